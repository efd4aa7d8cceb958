// A dialog as a window with native widgets at the items' rectangles.
#pragma once

#include <QDialog>
#include <QScrollBar>
#include <memory>
#include <vector>

#include "platform/internal/dialog_model.h"
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
    std::vector<QWidget *> items;      // null for what has no widget
    std::vector<BarWidget> bars;
    UserInput input;
    int32_t selectionCount;   // of the model's selection shown last
    int selectionStart = -1;  // in the field when the focus left it; -1 for none
    int selectionLength;
    bool stale = true;  // the plug-in may have changed the model
};

// The widgets of the items; the window shows with the first refresh.
std::unique_ptr<DialogWindow> MakeDialogWindow(DialogRecord *dialog);
// Makes the widgets say what the model says.
void Refresh(DialogWindow *shown);
// Waits until the user has done something, or for a while.
void WaitForAction(DialogWindow *shown);

}  // namespace qt
