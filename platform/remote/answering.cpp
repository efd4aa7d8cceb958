#include "platform/remote/answering.h"

#include <sys/socket.h>

#include <algorithm>
#include <iterator>
#include <memory>

#include "platform/internal/dialog_model.h"
#include "platform/packing.h"
#include "platform/remote/line.h"
#include "platform/remote/picture_rows.h"
#include "platform/remote/protocol.h"
#include "platform/remote/snapshot.h"

namespace {

struct Show {
    int line;
    const DialogBackend *backend;
    std::unique_ptr<DialogRecord> dialog;  // a copy of the one at the other end
    bool opened = false;
};

// The whole content must be the record.
template <typename Record>
bool TakeOnly(std::string_view content, Record *record) {
    return content.size() == sizeof *record && TakeRecord(&content, record);
}

template <typename Record>
std::string Packed(const Record &record) {
    std::string packed;
    AppendRecord(&packed, record);
    return packed;
}

bool AnswerHello(Show *show, std::string_view content) {
    remote::Hello hello;
    return TakeOnly(content, &hello) && hello.greeting == remote::kGreeting &&
           hello.version == remote::kVersion &&
           remote::SendPacket(show->line, remote::kHello,
                              Packed(remote::Hello{.screen = show->backend->screen()}));
}

bool TakeState(Show *show, std::string_view content) {
    if (show->dialog == nullptr) {
        show->dialog = std::make_unique<DialogRecord>();
    }
    return remote::UnpackDialog(content, show->dialog.get());
}

bool TakePicture(Show *show, std::string_view content) {
    return show->dialog != nullptr && remote::TakeRows(content, &show->dialog->window.port);
}

bool AnswerOpen(Show *show, std::string_view) {
    if (show->dialog == nullptr || show->opened) {
        return false;
    }
    show->opened = show->backend->open(show->dialog.get());
    return remote::SendPacket(show->line, remote::kOpen, Packed(uint16_t{show->opened}));
}

bool AnswerNext(Show *show, std::string_view) {
    if (!show->opened) {
        return false;
    }
    DialogRecord *dialog = show->dialog.get();
    EventRecord event = {};
    const bool more = show->backend->nextEvent(dialog, &event);
    const Rect &place = dialog->window.bounds;
    const remote::NextEvent answer = {
        uint16_t{more}, dialog->focusItem, {place.top, place.left}, remote::EventToSend(*dialog, event)};
    return remote::SendPacket(show->line, remote::kNext, Packed(answer));
}

bool AnswerTrack(Show *show, std::string_view content) {
    int32_t place = 0;
    if (!show->opened || !TakeOnly(content, &place) ||
        static_cast<size_t>(place) >= show->dialog->controls.size()) {
        return false;
    }
    ControlRecord *control = show->dialog->controls[static_cast<size_t>(place)].get();
    return remote::SendPacket(show->line, remote::kTrack, Packed(show->backend->track(control)));
}

bool AnswerEdit(Show *show, std::string_view content) {
    remote::TextEdit edit;
    if (!show->opened || !TakeOnly(content, &edit) || !model::IsTextField(show->dialog.get(), edit.item)) {
        return false;
    }
    DialogRecord *dialog = show->dialog.get();
    show->backend->edit(dialog, edit.item, remote::ReceivedEvent(edit.event, dialog));
    const EditedText &text = model::ItemAt(dialog, edit.item)->text;
    std::string answer = Packed(remote::TextSelection{static_cast<uint32_t>(text.selectionStart),
                                                      static_cast<uint32_t>(text.selectionEnd)});
    return remote::SendPacket(show->line, remote::kEdit, answer + text.characters);
}

bool AnswerDrag(Show *show, std::string_view content) {
    Point start;
    return show->opened && TakeOnly(content, &start) &&
           remote::SendPacket(show->line, remote::kDrag,
                              Packed(show->backend->drag(show->dialog.get(), start)));
}

void EndShow(Show *show) {
    if (show->opened) {
        show->backend->close(show->dialog.get());
        show->opened = false;
    }
    if (show->dialog != nullptr) {
        ports::ReleasePort(&show->dialog->window.port);
        show->dialog.reset();
    }
}

bool AnswerClose(Show *show, std::string_view) {
    EndShow(show);
    return remote::SendPacket(show->line, remote::kClose, {});
}

constexpr struct {
    remote::Mark mark;
    bool (*answer)(Show *show, std::string_view content);
} kAnswers[] = {
    {remote::kHello, AnswerHello}, {remote::kState, TakeState}, {remote::kRows, TakePicture},
    {remote::kOpen, AnswerOpen},   {remote::kNext, AnswerNext}, {remote::kTrack, AnswerTrack},
    {remote::kEdit, AnswerEdit},   {remote::kDrag, AnswerDrag}, {remote::kClose, AnswerClose},
};

bool Answer(Show *show, const remote::Packet &packet) {
    const auto *found = std::find_if(std::begin(kAnswers), std::end(kAnswers),
                                     [&](const auto &entry) { return entry.mark == packet.mark; });
    return found != std::end(kAnswers) && found->answer(show, packet.content);
}

}  // namespace

void remote::AnswerDialogs(int line, const DialogBackend &backend) {
    Show show = {line, &backend, nullptr};
    Packet packet;
    while (ReceivePacket(line, &packet) && Answer(&show, packet)) {
    }
    EndShow(&show);
    shutdown(line, SHUT_RDWR);
}
