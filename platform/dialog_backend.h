// Back ends for dialogs. Dialogs, items, controls and pictures live in platform/internal/dialog_model.h; a
// back end shows them and passes on what the user does.
#pragma once

#include "platform/dialogs.h"

#pragma GCC visibility push(default)

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

constexpr OSErr kNoScreenModule = -30001;
constexpr OSErr kNoDisplay = -30002;

// From now on dialogs appear on the screen. On kNoScreenModule or kNoDisplay nothing changes. If no back end
// has been chosen, the first dialog tries this one.
OSErr UseScreenDialogs();
// One sentence telling the user why UseScreenDialogs failed; `problem` is not noErr.
const char *ScreenDialogProblem(OSErr problem);

// The back end in use; if there is none, one that cannot show anything.
const DialogBackend &CurrentDialogBackend();
void SetDialogBackend(const DialogBackend *backend);

#pragma GCC visibility pop
