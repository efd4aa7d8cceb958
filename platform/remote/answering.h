// Answers the questions of dialogs at the other end of a line.
#pragma once

#include "platform/dialog_backend.h"

namespace remote {

// Shows the dialogs, one after the other, until the other side hangs up or says something that makes no
// sense; then hangs up. The descriptor stays the caller's.
void AnswerDialogs(int line, const DialogBackend &backend);

}  // namespace remote
