// The user item that shows a picture. One per process at a time.
#pragma once

#include "platform/dialogs.h"

extern UserItemUPP gUserItemProxyDraw;
// The picture shown; null shows nothing. Whoever made it takes it away from here before disposing of it.
extern GWorldPtr gProxyPtr;

// Has `item` show `world`.
void SetupProxyDraw(DialogRef dialog, int16_t item, GWorldPtr world);
// The item's drawing procedure.
void ProxyDraw(DialogRef dialog, int16_t item);
