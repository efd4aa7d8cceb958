// Dialogs answered from a list of user actions, for tests and unattended runs.
#pragma once

#include <string>
#include <vector>

#include "platform/dialog_backend.h"
#include "platform/internal/dialog_model.h"

struct UserAction {
    EventRecord event;  // a mouse action's place is filled in when its turn comes
    int16_t item;       // the item under the mouse; 0 for the title bar
    TrackedPart tracked;
    Point drag;        // how far the window is dragged
    bool selectAll;    // a click in a text field selects all of it instead of placing the caret at its end
    bool otherWindow;  // an update or activate event is for another window
};

namespace user {

UserAction Key(char character, uint16_t modifiers = 0);
UserAction Click(int16_t item);
UserAction DoubleClick(int16_t item);
// Presses a part of the scroll bar at the item's place.
UserAction Press(int16_t item, int16_t part);
UserAction MoveThumb(int16_t item, int16_t value);
UserAction DragWindow(int16_t dh, int16_t dv);
UserAction Event(uint16_t what, bool ofOtherWindow = false);

// Replaces a field's contents and closes the dialog with OK.
std::vector<UserAction> Answer(int16_t item, const std::string &text);

}  // namespace user

// A snapshot of a dialog as the user sees it.
struct DialogState {
    Rect bounds;
    std::vector<EditedText> texts;  // one entry per item in this and the next two
    std::vector<int16_t> values;    // the value of the item's own control, or of a scroll bar in its place
    std::vector<bool> controls;     // whether it has such a control
    Rect drawn;                     // the drawn part of the window; `picture` has its pixels without padding
    std::vector<uint8_t> picture;
};
DialogState StateOf(const DialogRecord &dialog);

struct ScriptedSession {
    std::vector<UserAction> actions;
    Rect screen = {0, 0, 480, 640};
    size_t done = 0;                             // actions taken; the next dialog continues from here
    std::vector<DialogState> *states = nullptr;  // if not null, receives the state before each action
};

// The back end that answers from the session, which the caller keeps alive while it is in use.
const DialogBackend &ScriptedDialogs(ScriptedSession *wanted);
