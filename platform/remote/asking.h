// The back end that has dialogs shown by another process: by the host, if it has given a line, or else by the
// program in this code's own folder. Whatever goes wrong there is a cancel here.
#pragma once

#include <string>

#include "platform/dialog_backend.h"

namespace remote {

// Chosen: long enough for a program to start on a busy machine, and for users to hold a mouse button down.
constexpr int kPatienceMilliseconds = 30000;

const DialogBackend &AskingBackend();

// Introduces itself to the other side. False if that is none that this code can talk to.
bool Greet(int line, Rect *screen);

// From now on dialogs are shown over this line, which stays the caller's; -1 for none.
void UseLine(int line, int patienceMilliseconds = kPatienceMilliseconds);

}  // namespace remote
