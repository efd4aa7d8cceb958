#include "platform/answered_dialogs.h"

#include <sys/socket.h>
#include <unistd.h>

#include <system_error>

#include "platform/remote/answering.h"
#include "platform/remote/line.h"

AnsweredDialogs::~AnsweredDialogs() {
    // Ends the thread even if the module has not let go of its end.
    shutdown(line, SHUT_RDWR);
    if (thread.joinable()) {
        thread.join();
    }
    close(line);
    close(forModule.line);
}

std::unique_ptr<AnsweredDialogs> AnswerDialogs(std::vector<UserAction> actions) {
    int ends[2];
    if (!remote::MakeLine(ends)) {
        return nullptr;
    }
    auto answered = std::make_unique<AnsweredDialogs>();
    answered->session.actions = std::move(actions);
    answered->line = ends[0];
    answered->forModule = {kDialogLineTag, sizeof(DialogLine), ends[1]};
    try {
        answered->thread = std::thread(remote::AnswerDialogs, ends[0], ScriptedDialogs(&answered->session));
    } catch (const std::system_error &) {
        return nullptr;
    }
    return answered;
}
