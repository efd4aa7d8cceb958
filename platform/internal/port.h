// The record behind a drawing port.
#pragma once

#include "platform/quickdraw.h"

struct GrafPort {
    PixMap pixMap;
    PixMap *pixMapMaster;  // what a PixMapHandle points at
    Handle pixels;
    RGBColor foreColor;
    RGBColor backColor;
    PenState pen;
    Point origin;  // local (0, 0) in screen coordinates
    Rect drawn;    // encloses everything drawn so far
};

namespace ports {

// Makes the port's picture, all zeros. The port must not move until ReleasePort.
OSErr InitPort(GrafPort *port, const Rect &bounds, bool temporaryMemory);
// If this port is current, the desktop's becomes current.
void ReleasePort(GrafPort *port);

uint8_t *PixelAt(const PixMap &picture, int32_t h, int32_t v);
bool Contains(const Rect &rect, Point point);
// The intersection, which is empty if either rectangle is.
Rect Common(const Rect &a, const Rect &b);
Rect Enclosing(const Rect &a, const Rect &b);
bool IsEmpty(const Rect &rect);
// Whether width and height fit 16 bits and are not negative.
bool IsSound(const Rect &rect);
// Whether all of `inner`, which is sound, lies in `outer`.
bool Holds(const Rect &outer, const Rect &inner);

}  // namespace ports
