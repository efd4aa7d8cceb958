// The widgets of a dialog's items.
#pragma once

#include "platform/qt/dialog_window.h"

namespace qt {

// One widget per item that has one, at its rectangle.
void MakeItemWidgets(DialogWindow *shown);
// Makes the widgets say what the model says, and select what the plug-in last selected.
void RefreshItems(DialogWindow *shown);

}  // namespace qt
