// The widgets of a dialog's scroll bars. Only the plug-in moves them.
#pragma once

#include "platform/qt/dialog_window.h"

namespace qt {

// Adds new bars, removes those that are gone, and sets all to their values.
void RefreshBars(DialogWindow *shown);

}  // namespace qt
