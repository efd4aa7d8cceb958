// Shows a dialog as a window of Windows' own, with its controls at the items' rectangles. A dialog's pixels
// are those of a display of 96 dots per inch; others show them larger.
#pragma once

#include <windows.h>

#include <memory>
#include <vector>

#include "platform/internal/user_actions.h"

namespace windows {

struct BarWindow {
    const ControlRecord *control;
    HWND bar;
};

struct DialogWindow {
    DialogRecord *dialog;
    HWND window;
    HWND owner;               // null if there is none
    std::vector<HWND> items;  // null for items without a control
    std::vector<BarWindow> bars;
    HFONT font;
    int resolution;
    POINT origin;  // of the screen that the plug-in knows, on the desktop
    // Input waits in the system's queue while one is pending, because the plug-in may change what a later key
    // or click means.
    user_actions::Queue actions;
    dialog_bars::Grip grip;
    bool clicking;           // a press of the mouse is being dealt with
    int32_t selectionCount;  // the model's count when its selection was last shown
    bool stale = true;       // the plug-in may have changed the model
    bool refreshing;         // what controls tell now is not the user's doing
};

// Null if the system makes no window. The first refresh shows it.
std::unique_ptr<DialogWindow> MakeDialogWindow(DialogRecord *dialog, HWND owner);
void CloseDialogWindow(DialogWindow *shown);
// Updates the window from the model.
void Refresh(DialogWindow *shown);
// Waits until the user does something, or for a short while. False if the window is gone, or the host's
// thread is to end.
bool WaitForAction(DialogWindow *shown);

// The controls: made, placed for the window's resolution, and updated from the model.
void MakeControls(DialogWindow *shown);
void PlaceControls(DialogWindow *shown);
void RefreshControls(DialogWindow *shown);
// For a message that a control has sent to the window.
void TakeCommand(DialogWindow *shown, int code, HWND control);
void TakeScroll(DialogWindow *shown, int code, int16_t position, HWND bar);

// For a message about the mouse in the window; true while the picture is held.
bool PanPicture(DialogWindow *shown, UINT message, LPARAM place);
// For any message; true if it is one about the wheel, over the picture.
bool RollPicture(DialogWindow *shown, const MSG &message);
// True where the mouse can take hold of the picture.
bool ShowHand(const DialogWindow &shown);

// Paints the part that the plug-in has drawn.
void PaintPicture(const DialogWindow &shown, HDC device);

// The rectangle in the window's dots.
RECT PlaceOf(const DialogWindow &shown, const Rect &bounds);
// The text field that takes keys; null if there is none.
HWND FieldOf(const DialogWindow &shown);

}  // namespace windows
