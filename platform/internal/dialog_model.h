// The records behind windows, dialogs and controls.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "platform/dialogs.h"
#include "platform/internal/port.h"

struct ControlRecord {
    DialogRecord *dialog;
    Rect bounds;
    std::string title;
    int16_t definition;  // scrollBarProc, or 0 for the control of an item
    int16_t value;
    int16_t minimum;
    int16_t maximum;
    bool visible;
    intptr_t reference;
};

// Text and the selected part of it.
struct EditedText {
    std::string characters;
    size_t selectionStart;
    size_t selectionEnd;
};

struct DialogItem {
    int16_t type;
    Rect bounds;
    UserItemUPP draw;        // user items only
    EditedText text;         // text items only
    ControlRecord *control;  // control items only
};

struct WindowRecord {
    GrafPort port;
    Rect bounds;  // the contents, in screen coordinates
    std::string title;
    int16_t definition;
    bool visible;
    intptr_t reference;
    Rect invalid;
};

struct DialogRecord {
    WindowRecord window;
    std::vector<DialogItem> items;
    std::vector<std::unique_ptr<ControlRecord>> controls;  // those of items come first
    int16_t defaultItem;
    int16_t cancelItem;
    int16_t focusItem;       // the text field that takes keys; 0 for none
    int32_t selectionCount;  // how often a call has set the selection
};

namespace model {

constexpr int16_t kTitleBarHeight = 20;
// What Str255 holds.
constexpr size_t kLongestText = 255;

// Open dialogs, frontmost last.
std::vector<DialogRecord *> &OpenDialogs();

// Read a dialog's two resources; false when they are malformed.
bool ReadWindowTemplate(Handle resource, WindowRecord *window, int16_t *itemListID);
bool ReadItemList(Handle resource, DialogRecord *dialog);

// Null if there is no such item.
DialogItem *ItemAt(DialogRecord *dialog, int16_t item);
// The item, enabled or not, under a point in local coordinates; 0 for none.
int16_t ItemUnder(const DialogRecord &dialog, Point local);
int16_t KindOf(const DialogItem &item);  // its type without kItemDisableBit
bool IsControlItem(const DialogItem &item);
bool IsTextField(DialogRecord *dialog, int16_t item);
ControlRecord *AddControl(DialogRecord *dialog, ControlRecord control);
// The control's place in the dialog's list; -1 if it is not there.
int32_t PlaceOf(const DialogRecord &dialog, const ControlRecord *control);

// How long a scroll bar's thumb is, in units of its value. Affects only the display.
int ThumbLength(const ControlRecord &control);

// Moves the window's contents to a place on the screen.
void MoveWindowTo(WindowRecord *window, Point place);

void CopyTitle(const std::string &text, StringPtr title);
std::string TitleFrom(ConstStringPtr title);

}  // namespace model
