#include "platform/qt/user_input.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <algorithm>
#include <iterator>
#include <memory>

namespace {

constexpr QEvent::Type kInputEvents[] = {
    QEvent::KeyPress,           QEvent::KeyRelease,          QEvent::InputMethod, QEvent::MouseButtonPress,
    QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick, QEvent::MouseMove,   QEvent::Wheel,
};

// Cloned mouse events would not do: they all share one position, the latest.
std::function<void(QObject *)> DeliveryOf(const QEvent &event) {
    if (const auto *mouse = dynamic_cast<const QMouseEvent *>(&event)) {
        return [type = mouse->type(), place = mouse->position(), onScreen = mouse->globalPosition(),
                button = mouse->button(), buttons = mouse->buttons(),
                modifiers = mouse->modifiers()](QObject *window) {
            QMouseEvent again(type, place, place, onScreen, button, buttons, modifiers);
            QCoreApplication::sendEvent(window, &again);
        };
    }
    const std::shared_ptr<QEvent> copy(event.clone());
    return [copy](QObject *window) { QCoreApplication::sendEvent(window, copy.get()); };
}

}  // namespace

bool qt::HoldBack(UserInput *input, const QEvent &event) {
    const bool busy = !input->actions.waiting.empty() || (!input->held.empty() && !input->releasing);
    if (!busy ||
        std::find(std::begin(kInputEvents), std::end(kInputEvents), event.type()) == std::end(kInputEvents)) {
        return false;
    }
    // Qt marks the press that begins a double click so that widgets ignore it. A re-created event loses that
    // mark, so the held press is dropped.
    if (event.type() == QEvent::MouseButtonDblClick && !input->held.empty() &&
        input->held.back().type == QEvent::MouseButtonPress) {
        input->held.pop_back();
    }
    // Of the places on the mouse's way only the last counts, or a drag would lag behind the hand.
    if (event.type() == QEvent::MouseMove && !input->held.empty() &&
        input->held.back().type == QEvent::MouseMove) {
        input->held.pop_back();
    }
    input->held.push_back({event.type(), DeliveryOf(event)});
    return true;
}

void qt::ReleaseHeld(UserInput *input, QObject *window) {
    input->releasing = true;
    while (input->actions.waiting.empty() && !input->held.empty()) {
        const HeldEvent event = std::move(input->held.front());
        input->held.pop_front();
        event.deliver(window);
    }
    input->releasing = false;
}
