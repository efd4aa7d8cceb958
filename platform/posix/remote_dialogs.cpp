// The back end of systems where each dialog is shown by another process.
#include <unistd.h>

#include "platform/dialog_backend.h"
#include "platform/dialog_line.h"
#include "platform/remote/asking.h"
#include "platform/remote/line.h"
#include "platform/remote/window_program.h"

namespace {

// What a dynamic linker that misses a library ends the program with.
constexpr int kNotLinked = 127;

}  // namespace

const DialogBackend &SystemDialogBackend() {
    return remote::AskingBackend();
}

void UsePlatformData(OSType hostSig, const void *platformData) {
    const auto *given = static_cast<const DialogLine *>(platformData);
    const bool sound = hostSig == kAnsweringHost && given != nullptr && given->tag == kDialogLineTag &&
                       given->size >= sizeof *given;
    remote::UseLine(sound ? given->line : -1);
}

OSErr TryDialogProgram(const std::string &folder) {
    int process = -1;
    const int line = remote::StartWindowProgram(folder, &process);
    if (line < 0) {
        return kNoDialogProgram;
    }
    Rect screen;
    remote::SetPatience(line, remote::kPatienceMilliseconds);
    const bool answers = remote::Greet(line, &screen);
    close(line);
    const int status = remote::EndWindowProgram(process);
    return answers ? noErr : status == kNotLinked ? kNoToolkit : kNoDisplay;
}

const char *DialogProgramProblem(OSErr problem) {
    switch (problem) {
        case kNoDialogProgram:
            return "Dialogs need the program hymedian-dialog beside the plug-in's module, and it is not "
                   "there.";
        case kNoToolkit:
            return "Dialogs need Qt 6, which is not installed.";
        default:
            return "Dialogs need a display, and there is none.";
    }
}
