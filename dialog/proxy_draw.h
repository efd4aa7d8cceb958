// The user item that shows a picture; one per process at a time.
#pragma once

#include "platform/dialogs.h"

extern UserItemUPP gUserItemProxyDraw;
// The picture shown; null for none. Its owner must clear this before disposing of it.
extern GWorldPtr gProxyPtr;

// Makes `item` show `world`.
void SetupProxyDraw(DialogRef dialog, int16_t item, GWorldPtr world);
// The item's drawing procedure.
void ProxyDraw(DialogRef dialog, int16_t item);
