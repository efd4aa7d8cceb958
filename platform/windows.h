// The Window Manager, as far as a modal dialog needs it.
#pragma once

#include "platform/quickdraw.h"

#pragma GCC visibility push(default)

struct WindowRecord;
using WindowRef = WindowRecord *;

enum : int16_t {
    inDesk = 0,
    inContent = 3,
    inDrag = 4,
};

extern "C" {

intptr_t GetWRefCon(WindowRef window);
void SetWRefCon(WindowRef window, intptr_t value);

// Marks a part of the window, in its local coordinates, for the next update event.
void InvalWindowRect(WindowRef window, const Rect *rect);

// What lies under a point of the screen, and the window it belongs to. Only movable windows have a part to
// drag: a bar of 20 pixels above the contents.
int16_t FindWindow(Point point, WindowRef *window);
// Follows the mouse until it is released; a window whose mouse is let go outside `bounds` stays where it was.
void DragWindow(WindowRef window, Point start, const Rect *bounds);

// The desktop.
RgnHandle GetGrayRgn();
Rect *GetRegionBounds(RgnHandle region, Rect *bounds);

}  // extern "C"

#pragma GCC visibility pop
