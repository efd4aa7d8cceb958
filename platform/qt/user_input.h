// The user's input to a dialog's widgets, one action at a time.
//
// Input that arrives while an action is pending is held back, because the plug-in may change what a later key
// or click means.
#pragma once

#include <QEvent>
#include <QObject>
#include <deque>
#include <functional>

#include "platform/internal/user_actions.h"

namespace qt {

struct HeldEvent {
    QEvent::Type type;
    std::function<void(QObject *window)> deliver;
};

struct UserInput {
    user_actions::Queue actions;
    std::deque<HeldEvent> held;
    bool releasing;
};

// True when a window's event has been kept for later and must not be delivered now. This filters the window's
// events, not its widgets', because a click moves the focus before the widget sees it.
bool HoldBack(UserInput *input, const QEvent &event);
// Delivers held events until one of them makes an action.
void ReleaseHeld(UserInput *input, QObject *window);

}  // namespace qt
