// What a drawing port consists of.
#pragma once

#include "platform/quickdraw.h"

#pragma GCC visibility push(default)

struct GrafPort {
    PixMap pixMap;
    PixMap *pixMapMaster;  // what a PixMapHandle points at
    Handle pixels;
    RGBColor foreColor;
    RGBColor backColor;
    PenState pen;
    Point origin;  // where local (0, 0) lies on the screen
    Rect drawn;    // encloses all that was ever drawn
};

namespace ports {

// Makes the port's picture, all zeros. The port stays where it is until ReleasePort.
OSErr InitPort(GrafPort *port, const Rect &bounds, bool temporaryMemory);
// Also makes the desktop's port current if this one was.
void ReleasePort(GrafPort *port);

uint8_t *PixelAt(const PixMap &picture, int32_t h, int32_t v);
bool Contains(const Rect &rect, Point point);
// The part that both have; empty rectangles have none.
Rect Common(const Rect &a, const Rect &b);
Rect Enclosing(const Rect &a, const Rect &b);
bool IsEmpty(const Rect &rect);

}  // namespace ports

#pragma GCC visibility pop
