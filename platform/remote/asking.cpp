// Owns the connection to whoever shows the dialog: one dialog at a time.
#include "platform/remote/asking.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>

#include "platform/internal/dialog_model.h"
#include "platform/native_paths.h"
#include "platform/packing.h"
#include "platform/remote/line.h"
#include "platform/remote/picture_rows.h"
#include "platform/remote/protocol.h"
#include "platform/remote/snapshot.h"
#include "platform/remote/window_program.h"

namespace {

struct Connection {
    int line = -1;
    int process = -1;
    bool tried = false;  // until the dialog is closed, a connection that failed is not tried again
    Rect screen = {};
    remote::SentPicture picture = {};
};

int hostsLine = -1;
int patience = remote::kPatienceMilliseconds;
Connection connection;
DialogRecord *shown;

void HangUp() {
    if (connection.line >= 0) {
        close(connection.line);
        connection.line = -1;
    }
    if (connection.process > 0) {
        remote::EndWindowProgram(connection.process);
        connection.process = -1;
    }
}

// Sends, and hangs up if that fails.
bool Tell(char mark, std::string_view content) {
    const bool told = connection.line >= 0 && remote::SendPacket(connection.line, mark, content);
    if (!told) {
        HangUp();
    }
    return told;
}

// Anything but an answer of the right kind and size ends the connection.
template <typename Record>
bool Ask(char mark, std::string_view content, Record *answer, std::string *rest = nullptr) {
    remote::Packet packet;
    if (!Tell(mark, content)) {
        return false;
    }
    std::string_view left;
    bool sound = remote::ReceivePacket(connection.line, &packet) && packet.mark == mark;
    if (sound) {
        left = packet.content;
        sound = TakeRecord(&left, answer) && (rest != nullptr || left.empty());
    }
    if (!sound) {
        HangUp();
        return false;
    }
    if (rest != nullptr) {
        *rest = left;
    }
    return true;
}

template <typename Record, typename Answer>
bool AskWith(char mark, const Record &record, Answer *answer, std::string *rest = nullptr) {
    std::string content;
    AppendRecord(&content, record);
    return Ask(mark, content, answer, rest);
}

void Connect() {
    if (connection.tried) {
        return;
    }
    connection = {};
    connection.tried = true;
    connection.line = hostsLine >= 0 ? fcntl(hostsLine, F_DUPFD_CLOEXEC, 0)
                                     : remote::StartWindowProgram(OwnFolder(), &connection.process);
    if (connection.line >= 0) {
        remote::SetPatience(connection.line, patience);
        if (!remote::Greet(connection.line, &connection.screen)) {
            HangUp();
        }
    }
}

// Shows the dialog as it is now.
bool Update(const DialogRecord &dialog) {
    if (!Tell(remote::kState, remote::PackDialog(dialog))) {
        return false;
    }
    if (!remote::SendPicture(connection.line, dialog.window.port, &connection.picture)) {
        HangUp();
        return false;
    }
    return true;
}

Rect Screen() {
    Connect();
    return connection.screen;
}

bool Open(DialogRecord *dialog) {
    uint16_t open = 0;
    Connect();
    if (shown != nullptr || !Update(*dialog) || !Ask(remote::kOpen, {}, &open) || open == 0) {
        return false;
    }
    shown = dialog;
    return true;
}

// Also without a dialog, since a connection is made before there is one.
void Close(DialogRecord *dialog) {
    if (shown != nullptr && shown != dialog) {
        return;
    }
    remote::Packet packet;
    if (Tell(remote::kClose, {})) {
        remote::ReceivePacket(connection.line, &packet);
    }
    HangUp();
    connection = {};
    shown = nullptr;
}

bool NextEvent(DialogRecord *dialog, EventRecord *event) {
    remote::NextEvent next;
    if (dialog != shown || !Update(*dialog) || !Ask(remote::kNext, {}, &next) || next.more == 0) {
        return false;
    }
    dialog->focusItem = next.focusItem;
    model::MoveWindowTo(&dialog->window, next.place);
    *event = remote::ReceivedEvent(next.event, dialog);
    return true;
}

TrackedPart Track(ControlRecord *control) {
    TrackedPart tracked = {};
    return AskWith(remote::kTrack, model::PlaceOf(*control->dialog, control), &tracked) ? tracked
                                                                                        : TrackedPart{};
}

void Edit(DialogRecord *dialog, int16_t item, const EventRecord &event) {
    const remote::TextEdit edit = {item, 0, remote::EventToSend(*dialog, event)};
    remote::TextSelection selection;
    std::string text;
    if (!AskWith(remote::kEdit, edit, &selection, &text)) {
        return;
    }
    if (text.size() > model::kLongestText) {
        HangUp();
        return;
    }
    model::ItemAt(dialog, item)->text = {text, selection.start, selection.end};
}

Point Drag(DialogRecord *, Point start) {
    Point end = {};
    return AskWith(remote::kDrag, start, &end) ? end : start;
}

constexpr DialogBackend kAsking = {Screen, Open, Close, NextEvent, Track, Edit, Drag};

}  // namespace

const DialogBackend &remote::AskingBackend() {
    return kAsking;
}

bool remote::Greet(int line, Rect *screen) {
    std::string greeting;
    AppendRecord(&greeting, Hello{});
    Packet packet;
    Hello hello;
    if (!SendPacket(line, kHello, greeting) || !ReceivePacket(line, &packet)) {
        return false;
    }
    std::string_view content = packet.content;
    if (packet.mark != kHello || !TakeRecord(&content, &hello) || !content.empty() ||
        hello.greeting != kGreeting || hello.version != kVersion) {
        return false;
    }
    *screen = hello.screen;
    return true;
}

void remote::UseLine(int line, int patienceMilliseconds) {
    hostsLine = line;
    patience = patienceMilliseconds;
}
