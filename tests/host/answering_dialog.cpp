// Stands in for hymedian-dialog: each dialog takes the next character of the file $HYMEDIAN_ANSWERS, a
// radius, or c to cancel.
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "hybridmedian/public.h"
#include "platform/remote/answering.h"
#include "platform/remote/window_program.h"
#include "platform/scripted_dialogs.h"

namespace {

ScriptedSession session;
const DialogBackend &scripted = ScriptedDialogs(&session);

void TakeAnswer() {
    const char *file = std::getenv("HYMEDIAN_ANSWERS");
    std::ifstream stream(file);
    const std::string answers(std::istreambuf_iterator<char>(stream), {});
    const bool cancels = answers.empty() || answers[0] == 'c';
    session.actions = cancels ? std::vector<UserAction>{user::Click(kCancelItem)}
                              : user::Answer(kRadiusFieldItem, answers.substr(0, 1));
    std::ofstream(file) << answers.substr(answers.empty() ? 0 : 1);
}

bool NextEvent(DialogRecord *dialog, EventRecord *event) {
    if (session.actions.empty()) {
        TakeAnswer();
    }
    return scripted.nextEvent(dialog, event);
}

}  // namespace

int main() {
    DialogBackend backend = scripted;
    backend.nextEvent = NextEvent;
    remote::AnswerDialogs(remote::kWindowLine, backend);
    return 0;
}
