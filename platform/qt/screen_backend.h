// The back end that shows dialogs in windows on the screen.
#pragma once

#include "platform/dialog_backend.h"

namespace qt {

// Without a display its first call ends the process.
const DialogBackend &ScreenDialogs();

}  // namespace qt
