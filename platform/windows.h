// The Window Manager, as far as modal dialogs need it.
#pragma once

#include "platform/quickdraw.h"

struct WindowRecord;
using WindowRef = WindowRecord *;

enum : int16_t {
    inDesk = 0,
    inContent = 3,
    inDrag = 4,
};

intptr_t GetWRefCon(WindowRef window);
void SetWRefCon(WindowRef window, intptr_t value);

// Adds part of the window, in its local coordinates, to what the next update event redraws.
void InvalWindowRect(WindowRef window, const Rect *rect);

// The part of a window under a point on the screen, and that window. Only movable windows have a drag region:
// a bar of 20 pixels above the contents.
int16_t FindWindow(Point point, WindowRef *window);
// Follows the mouse until it is released; if that is outside `bounds`, the window stays where it was.
void DragWindow(WindowRef window, Point start, const Rect *bounds);

// The desktop.
RgnHandle GetGrayRgn();
Rect *GetRegionBounds(RgnHandle region, Rect *bounds);
