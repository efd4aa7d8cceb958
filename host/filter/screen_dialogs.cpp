#include "host/filter/screen_dialogs.h"

#include "platform/dialog_backend.h"

MaybeFailure ShowDialogs() {
    const OSErr problem = UseScreenDialogs();
    return problem == noErr ? std::nullopt : MaybeFailure({kExitFailed, ScreenDialogProblem(problem)});
}
