// What a dialog is built from: opening it, running it while the host redraws its own windows, and its items
// by number.
#pragma once

#include "platform/dialogs.h"
#include "toolkit/run_context.h"

using HostEventProc = void (*)(EventRecord *event);

// The filter of the modal run going on.
extern ModalFilterUPP gFilterProc;

// Opens dialog `id` in the middle of the main screen, movable where the system can do that. Null without its
// resources.
DialogRef GetNewMooDialog(int16_t id, void *storage, WindowRef behind);
// Places a dialog template, a third of the way down the height left free below the menu bar.
void CenterDialog(Handle dialogTemplate);
// On systems that have no movable modal dialogs: the window definition that comes nearest.
void SetUpMoveableModal(Handle dialogTemplate, OSType hostSignature);

// Waits until an item is hit. Either lends the window's reference value to the run; `filter` and `eventProc`
// may be null.
void MooModalDialog(const RunContext *context, DialogRef dialog, ModalFilterUPP filter, int16_t *itemHit);
void MoveableModalDialog(DialogRef dialog, HostEventProc eventProc, ModalFilterUPP filter, int16_t *itemHit);
// Drags the window, hands null events and those of other windows to the host, and knows the keys of both
// buttons.
Boolean DialogFilter(DialogRef dialog, EventRecord *event, int16_t *itemHit);

// Makes `item` the default button, and item 2 the cancel button.
void OutlineButton(DialogRef dialog, int16_t item);
void SetDGItem(DialogRef dialog, int16_t item, int16_t value);
void GetDRect(DialogRef dialog, int16_t item, Rect *rect);
// The text of a text item, the title of a control; other items have none.
void GetDText(DialogRef dialog, int16_t item, StringPtr text);
void SetDText(DialogRef dialog, int16_t item, ConstStringPtr text);
void SetDNum(DialogRef dialog, int16_t item, int32_t number);
int32_t GetDNum(DialogRef dialog, int16_t item);
// Has the item drawn with the next update.
void InvalItem(DialogRef dialog, int16_t item);
