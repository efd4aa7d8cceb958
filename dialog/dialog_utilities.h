// Building blocks of dialogs: opening one, running it while the host redraws its own windows, and reaching
// its items by number.
#pragma once

#include "platform/dialogs.h"
#include "toolkit/run_context.h"

using HostEventProc = void (*)(EventRecord *event);

// The event filter of the current modal run.
extern ModalFilterUPP gFilterProc;

// Opens dialog `id` centred on the main screen, movable if the system supports that. Returns null if its
// resources are missing.
DialogRef GetNewMooDialog(int16_t id, void *storage, WindowRef behind);
// Centres a dialog template from left to right; above it goes a third of the height left free below the menu
// bar.
void CenterDialog(Handle dialogTemplate);
// On systems without movable modal dialogs, picks the window definition that comes closest to one.
void SetUpMoveableModal(Handle dialogTemplate, OSType hostSignature);

// Wait until an item is hit. Both use the window's reference value for the duration of the run, then restore
// it. `filter` and `eventProc` may be null.
void MooModalDialog(const RunContext *context, DialogRef dialog, ModalFilterUPP filter, int16_t *itemHit);
void MoveableModalDialog(DialogRef dialog, HostEventProc eventProc, ModalFilterUPP filter, int16_t *itemHit);
// Drags the window, passes null events and those of other windows to the host, and handles the keys of the
// default and cancel buttons.
Boolean DialogFilter(DialogRef dialog, EventRecord *event, int16_t *itemHit);

// Makes `item` the default button, and item 2 the cancel button.
void OutlineButton(DialogRef dialog, int16_t item);
void SetDGItem(DialogRef dialog, int16_t item, int16_t value);
void GetDRect(DialogRef dialog, int16_t item, Rect *rect);
// The text of a text item, or the title of a control; empty for other items.
void GetDText(DialogRef dialog, int16_t item, StringPtr text);
void SetDText(DialogRef dialog, int16_t item, ConstStringPtr text);
void SetDNum(DialogRef dialog, int16_t item, int32_t number);
int32_t GetDNum(DialogRef dialog, int16_t item);
// Has the item redrawn at the next update.
void InvalItem(DialogRef dialog, int16_t item);
