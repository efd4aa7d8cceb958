// The user's input to a dialog's widgets, one action at a time.
//
// Input that arrives while an action is pending is held back, because the plug-in may change what a later key
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
    Point place;   // the mouse, in window coordinates
    int16_t item;  // the edited text field
    TrackedPart tracked;
    QString text;  // the field's text after the user's edit
    int caret;
};

struct HeldEvent {
    QEvent::Type type;
    std::function<void(QObject *window)> deliver;
};

struct UserInput {
    std::deque<Action> actions;  // not yet seen by the plug-in
    Action current;              // the one being handled
    std::deque<HeldEvent> held;
    bool releasing;
};

// Queue an action for the plug-in: a press in the middle of `bounds` and its outcome, a text after an edit,
// or a key.
void PostPress(UserInput *input, const Rect &bounds, TrackedPart tracked);
void PostEdit(UserInput *input, int16_t item, const QString &text, int caret);
void PostKey(UserInput *input, uint8_t character);

// True when a window's event has been kept for later and must not be delivered now. This filters the window's
// events, not its widgets', because a click moves the focus before the widget sees it.
bool HoldBack(UserInput *input, const QEvent &event);
// Delivers held events until one of them makes an action.
void ReleaseHeld(UserInput *input, QObject *window);

}  // namespace qt
