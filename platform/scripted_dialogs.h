// Dialogs answered from a list of what the user does, for tests and for runs that nobody watches.
#pragma once

#include <string>
#include <vector>

#include "platform/dialog_backend.h"
#include "platform/internal/dialog_model.h"

#pragma GCC visibility push(default)

struct UserAction {
    EventRecord event;  // of mouse actions without the place, which is known when the action's turn comes
    int16_t item;       // that the mouse is on; 0 for the bar above the window
    TrackedPart tracked;
    Point drag;        // how far the window is dragged
    bool selectAll;    // a click into a text selects all of it instead of putting the caret at its end
    bool otherWindow;  // update and activate events are of a window that is not the dialog
};

namespace user {

UserAction Key(char character, uint16_t modifiers = 0);
UserAction Click(int16_t item);
UserAction DoubleClick(int16_t item);
// Presses a part of the scroll bar at an item's place.
UserAction Press(int16_t item, int16_t part);
UserAction MoveThumb(int16_t item, int16_t value);
UserAction DragWindow(int16_t dh, int16_t dv);
UserAction Event(uint16_t what, bool ofOtherWindow = false);

// Replaces what a field holds and ends the dialog with OK.
std::vector<UserAction> Answer(int16_t item, const std::string &text);

}  // namespace user

// A dialog as the user sees it.
struct DialogState {
    Rect bounds;
    std::vector<EditedText> texts;  // an entry per item, as is the next
    std::vector<int16_t> values;    // of the item's own control, or of a scroll bar at its place
    std::vector<bool> controls;     // whether there is one
    Rect drawn;                     // what was drawn in the window, and its pixels without padding
    std::vector<uint8_t> picture;
};
DialogState StateOf(const DialogRecord &dialog);

struct ScriptedSession {
    std::vector<UserAction> actions;
    Rect screen = {0, 0, 480, 640};
    size_t done = 0;                             // actions taken; the next dialog goes on from there
    std::vector<DialogState> *states = nullptr;  // when wanted: what was seen before each action
};

#pragma GCC visibility pop
