#include "host/filter/screen_dialogs.h"

#include "platform/dialog_backend.h"

namespace {

// The screen's back end, but for one thing: it lets a dialog go when the program is interrupted. It wakes up
// now and then even when the user does nothing.
DialogBackend backend;
bool (*nextEventOnScreen)(DialogRecord *dialog, EventRecord *event);
bool (*isInterrupted)();

bool NextEvent(DialogRecord *dialog, EventRecord *event) {
    return !isInterrupted() && nextEventOnScreen(dialog, event);
}

}  // namespace

MaybeFailure ShowDialogs(bool (*interrupted)()) {
    if (const OSErr problem = UseScreenDialogs(); problem != noErr) {
        return Failure{kExitFailed, ScreenDialogProblem(problem)};
    }
    backend = CurrentDialogBackend();
    nextEventOnScreen = backend.nextEvent;
    isInterrupted = interrupted;
    backend.nextEvent = NextEvent;
    SetDialogBackend(&backend);
    return std::nullopt;
}
