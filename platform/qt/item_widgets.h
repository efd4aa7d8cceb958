// The widgets of a dialog's items.
#pragma once

#include "platform/qt/dialog_window.h"

namespace qt {

// One widget, at the item's rectangle, for each item that needs one.
void MakeItemWidgets(DialogWindow *shown);
// Updates the widgets from the model, and selects what the plug-in last selected.
void RefreshItems(DialogWindow *shown);

}  // namespace qt
