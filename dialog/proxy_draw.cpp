#include "dialog/proxy_draw.h"

#include "dialog/copy_colors.h"
#include "dialog/dialog_utilities.h"

UserItemUPP gUserItemProxyDraw;
GWorldPtr gProxyPtr;

void SetupProxyDraw(DialogRef dialog, int16_t item, GWorldPtr world) {
    gUserItemProxyDraw = NewUserItemUPP(ProxyDraw);
    gProxyPtr = world;
    int16_t type = kUserDialogItem;
    Handle handle;
    Rect bounds = {};
    GetDialogItem(dialog, item, &type, &handle, &bounds);
    SetDialogItem(dialog, item, type, reinterpret_cast<Handle>(gUserItemProxyDraw), &bounds);
}

void ProxyDraw(DialogRef dialog, int16_t item) {
    if (gProxyPtr == nullptr) {
        return;
    }
    GrafPtr saved;
    GetPort(&saved);
    CGrafPtr port = GetDialogPort(dialog);
    SetPort(port);
    PenState pen;
    GetPenState(&pen);
    SetCopyColors();

    Rect place;
    GetDRect(dialog, item, &place);
    Rect picture = place;
    OffsetRect(&picture, static_cast<int16_t>(-place.left), static_cast<int16_t>(-place.top));
    CopyBits(GetPortBitMapForCopyBits(gProxyPtr), GetPortBitMapForCopyBits(port), &picture, &place, srcCopy,
             nullptr);

    SetPenState(&pen);
    SetPort(saved);
}
