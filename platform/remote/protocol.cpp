#include "platform/remote/protocol.h"

#include "platform/internal/dialog_model.h"

namespace {

// Stands for any window other than the dialog.
WindowRecord otherWindow;

bool ConcernsWindow(uint16_t what) {
    return what == updateEvt || what == activateEvt;
}

}  // namespace

remote::SentEvent remote::EventToSend(const DialogRecord &dialog, const EventRecord &event) {
    const bool ofDialog = event.message == reinterpret_cast<uintptr_t>(&dialog.window);
    const auto message = static_cast<uint32_t>(event.message & charCodeMask);
    return {event.what, event.modifiers, ConcernsWindow(event.what) ? uint32_t{ofDialog} : message,
            event.when, event.where};
}

EventRecord remote::ReceivedEvent(const SentEvent &sent, DialogRecord *dialog) {
    // Nothing that was received is ever taken for an address.
    WindowRecord *window = sent.message == 1 ? &dialog->window : &otherWindow;
    const uintptr_t message =
        ConcernsWindow(sent.what) ? reinterpret_cast<uintptr_t>(window) : sent.message & charCodeMask;
    return {sent.what, message, sent.when, sent.where, sent.modifiers};
}
