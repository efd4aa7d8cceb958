// The Dialog Manager: dialogs made from 'DLOG' and 'DITL' resources, their items, and the modal loop.
//
// Items are numbered from 1. The dialog is shown, and the user's actions arrive, through one of the back ends
// of platform/dialog_backend.h.
#pragma once

#include "platform/controls.h"
#include "platform/events.h"

struct DialogRecord;
using DialogRef = DialogRecord *;

using ModalFilterProc = Boolean (*)(DialogRef dialog, EventRecord *event, int16_t *itemHit);
using ModalFilterUPP = ModalFilterProc;
using UserItemProc = void (*)(DialogRef dialog, int16_t item);
using UserItemUPP = UserItemProc;

// Item types. Bit 7 is set in items whose hits are not reported.
enum : int16_t {
    kUserDialogItem = 0,
    kButtonDialogItem = 4,
    kCheckBoxDialogItem = 5,
    kRadioButtonDialogItem = 6,
    kResourceControlDialogItem = 7,
    kStaticTextDialogItem = 8,
    kEditTextDialogItem = 16,
    kItemDisableBit = 128,
};

enum : int16_t {
    kStdOkItemIndex = 1,
    kStdCancelItemIndex = 2,
};

// Null when a resource is missing or malformed, or no back end can show the dialog. `storage` must be null; a
// new dialog is always frontmost, whatever `behind` says.
DialogRef GetNewDialog(int16_t id, void *storage, WindowRef behind);
void DisposeDialog(DialogRef dialog);
WindowRef GetDialogWindow(DialogRef dialog);
CGrafPtr GetDialogPort(DialogRef dialog);

// `handle` stands for the text of a text item, and is the ControlRef of a control or the drawing procedure of
// a user item. Calls on an item that does not exist do nothing.
void GetDialogItem(DialogRef dialog, int16_t item, int16_t *type, Handle *handle, Rect *bounds);
void SetDialogItem(DialogRef dialog, int16_t item, int16_t type, Handle handle, const Rect *bounds);
// For a handle that is not a text item's, the first gives an empty text and the second does nothing.
void GetDialogItemText(Handle handle, StringPtr text);
void SetDialogItemText(Handle handle, ConstStringPtr text);
// Selects characters of a text field and moves the keyboard focus there; positions past the end of the text
// mean its end.
void SelectDialogItemText(DialogRef dialog, int16_t item, int16_t start, int16_t end);
OSErr SetDialogDefaultItem(DialogRef dialog, int16_t item);
OSErr SetDialogCancelItem(DialogRef dialog, int16_t item);

ModalFilterUPP NewModalFilterUPP(ModalFilterProc procedure);
UserItemUPP NewUserItemUPP(UserItemProc procedure);

// Handles events for the frontmost dialog, passing each to the filter first, until an enabled item is hit.
// When no more events can come, it reports a hit on item 2.
void ModalDialog(ModalFilterUPP filter, int16_t *itemHit);
// Return and Enter hit the default item; Escape and Command-period hit the cancel item.
Boolean StdFilterProc(DialogRef dialog, EventRecord *event, int16_t *itemHit);
