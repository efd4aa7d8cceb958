// Shows a dialog as a window, with native widgets at the items' rectangles.
#pragma once

#include <QDialog>
#include <QScrollBar>
#include <memory>
#include <vector>

#include "platform/internal/dialog_bars.h"
#include "platform/qt/user_input.h"

namespace qt {

struct BarWidget {
    const ControlRecord *control;
    QScrollBar *bar;
};

struct DialogWindow {
    DialogRecord *dialog;
    std::unique_ptr<QDialog> window;
    std::unique_ptr<QObject> watcher;  // filters the widgets' events
    std::vector<QWidget *> items;      // null for items without a widget
    std::vector<BarWidget> bars;
    UserInput input;
    dialog_bars::Grip grip;
    int32_t selectionCount;   // the model's count when its selection was last shown
    int selectionStart = -1;  // the field's, when it lost the focus; -1 for none
    int selectionLength;
    bool stale = true;  // the plug-in may have changed the model
};

// Makes the items' widgets; the first refresh shows the window.
std::unique_ptr<DialogWindow> MakeDialogWindow(DialogRecord *dialog);
// Updates the widgets from the model.
void Refresh(DialogWindow *shown);
// Waits until the user does something, or for a short while.
void WaitForAction(DialogWindow *shown);

}  // namespace qt
