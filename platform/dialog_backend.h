// How a dialog meets its user. Dialogs, items, controls and pictures live in platform/dialog_model.h; a back
// end shows them and hands in what the user does.
#pragma once

#include "platform/dialogs.h"

#pragma GCC visibility push(default)

struct ScriptedSession;

// What became of a press on a control; `value` counts only for the thumb.
struct TrackedPart {
    int16_t part;
    int16_t value;
};

struct DialogBackend {
    Rect (*screen)();
    // False when the dialog cannot be shown. Its picture and its items are complete, its controls come later.
    bool (*open)(DialogRecord *dialog);
    void (*close)(DialogRecord *dialog);

    // Shows the dialog as it stands now and waits for what happens next. False when nothing can happen any
    // more.
    bool (*nextEvent)(DialogRecord *dialog, EventRecord *event);

    // The following tell how what began with the latest event went on.
    TrackedPart (*track)(ControlRecord *control);
    // Does in the text field what the event, a key or a click, means there.
    void (*edit)(DialogRecord *dialog, int16_t item, const EventRecord &event);
    // Where the mouse was let go, on the screen.
    Point (*drag)(DialogRecord *dialog, Point start);
};

// Dialogs from now on are answered by `wanted`, which stays the caller's and lives as long as it is in
// use.
void UseScriptedDialogs(ScriptedSession *wanted);

constexpr OSErr kNoScreenModule = -30001;
constexpr OSErr kNoDisplay = -30002;

// Dialogs from now on are shown on the screen. Otherwise kNoScreenModule or kNoDisplay, and everything stays
// as it was. Where nobody has chosen, the first dialog tries this.
OSErr UseScreenDialogs();
// One sentence for the user about a result of UseScreenDialogs other than noErr.
const char *ScreenDialogProblem(OSErr problem);

// The back end in use; without one, one that can show nothing.
const DialogBackend &CurrentDialogBackend();
void SetDialogBackend(const DialogBackend *backend);

#pragma GCC visibility pop
