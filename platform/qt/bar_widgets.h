// The widgets of a dialog's scroll bars. The plug-in alone moves them.
#pragma once

#include "platform/qt/dialog_window.h"

namespace qt {

// Makes those that are new, takes away those that are gone, and moves all to their values.
void RefreshBars(DialogWindow *shown);

}  // namespace qt
