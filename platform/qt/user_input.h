// What the user does to the widgets of a dialog, one thing at a time.
//
// Whatever comes in while an action waits to be handled is held back: the plug-in may change what a later key
// or click means.
#pragma once

#include <QEvent>
#include <QObject>
#include <QString>
#include <deque>
#include <functional>

#include "platform/dialog_backend.h"

namespace qt {

struct Action {
    EventRecord event;
    Point place;   // of the mouse in the window
    int16_t item;  // of the text field that was edited
    TrackedPart tracked;
    QString text;  // of a text field after the user's edit
    int caret;
};

struct HeldEvent {
    QEvent::Type type;
    std::function<void(QObject *window)> deliver;
};

struct UserInput {
    std::deque<Action> actions;  // that the plug-in has not seen yet
    Action current;              // that it handles now
    std::deque<HeldEvent> held;
    bool releasing;
};

// Hand an action to the plug-in: the mouse on the middle of `bounds` and what came of it, a text after an
// edit, the key.
void PostPress(UserInput *input, const Rect &bounds, TrackedPart tracked);
void PostEdit(UserInput *input, int16_t item, const QString &text, int caret);
void PostKey(UserInput *input, uint8_t character);

// True when an event of the window is kept for later and must not be delivered now. The window, not its
// widgets: the focus moves with a click before the widget hears of it.
bool HoldBack(UserInput *input, const QEvent &event);
// Delivers what was held back until that makes an action.
void ReleaseHeld(UserInput *input, QObject *window);

}  // namespace qt
