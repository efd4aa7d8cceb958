// Back ends for dialogs. Dialogs, items, controls and pictures live in platform/internal/dialog_model.h; a
// back end shows them and passes on what the user does.
#pragma once

#include <string>

#include "platform/dialogs.h"

struct ScriptedSession;

// The outcome of a press on a control; `value` is meaningful only for the thumb.
struct TrackedPart {
    int16_t part;
    int16_t value;
};

struct DialogBackend {
    Rect (*screen)();
    // False when the dialog cannot be shown. Its picture and items are complete by now; controls may be added
    // later.
    bool (*open)(DialogRecord *dialog);
    // Also of a dialog that could not be opened.
    void (*close)(DialogRecord *dialog);

    // Shows the dialog's current state and waits for the next event. False when no more events can come.
    bool (*nextEvent)(DialogRecord *dialog, EventRecord *event);

    // The rest continue what the latest event began.
    TrackedPart (*track)(ControlRecord *control);
    // Applies the event, a key or a click, to the text field.
    void (*edit)(DialogRecord *dialog, int16_t item, const EventRecord &event);
    // Where the mouse was released, on the screen.
    Point (*drag)(DialogRecord *dialog, Point start);
};

// From now on `wanted` answers dialogs. The caller keeps ownership and must keep it alive while it is in use.
void UseScriptedDialogs(ScriptedSession *wanted);

// The back end in use. If none has been chosen, it is the system's.
const DialogBackend &CurrentDialogBackend();
void SetDialogBackend(const DialogBackend *backend);

// On POSIX, dialogs are shown by the host, or by a program of their own; on Windows, in windows of this
// process.
const DialogBackend &SystemDialogBackend();

// On POSIX, the one host whose platformData is read: hymedian, which can answer dialogs itself through it,
// see platform/answered_dialogs.h. To others it is theirs. On Windows it tells every host's window.
constexpr OSType kAnsweringHost = FourCharCode("HyMh");

// The record's fields of these names, for dialogs from now on; null lets go of them.
void UsePlatformData(OSType hostSig, const void *platformData);

// The rest is for hosts on POSIX.

constexpr OSErr kNoDialogProgram = -30001;
constexpr OSErr kNoToolkit = -30002;
constexpr OSErr kNoDisplay = -30003;

// Whether the program in a module's folder could show a dialog now.
OSErr TryDialogProgram(const std::string &folder);
// One sentence telling the user why it could not; `problem` is not noErr.
const char *DialogProgramProblem(OSErr problem);
