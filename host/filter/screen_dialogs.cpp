#include "host/filter/screen_dialogs.h"

#include "host/interrupt.h"
#include "platform/dialog_backend.h"

namespace {

// The screen's back end, but for one thing: it lets a dialog go when the program is interrupted. It wakes up
// now and then even when the user does nothing.
DialogBackend backend;
bool (*nextEventOnScreen)(DialogRecord *dialog, EventRecord *event);

bool NextEvent(DialogRecord *dialog, EventRecord *event) {
    return !Interrupted() && nextEventOnScreen(dialog, event);
}

}  // namespace

MaybeFailure ShowDialogs() {
    if (const OSErr problem = UseScreenDialogs(); problem != noErr) {
        return Failure{kExitFailed, ScreenDialogProblem(problem)};
    }
    backend = CurrentDialogBackend();
    nextEventOnScreen = backend.nextEvent;
    backend.nextEvent = NextEvent;
    SetDialogBackend(&backend);
    return std::nullopt;
}
