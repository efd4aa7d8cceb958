// Drawing: rectangles, ports with 32-bit pictures, off-screen graphics worlds, and copying between them.
//
// A pixel is four bytes: 0, red, green, blue. Every drawing call draws into the current port, in its local
// coordinates, clipped to its bounds. Until some port is made current, that is the desktop's, which shows
// nothing.
#pragma once

#include "platform/types.h"

struct GrafPort;
using CGrafPtr = GrafPort *;
using GrafPtr = CGrafPtr;
using GWorldPtr = CGrafPtr;
using GWorldFlags = uint32_t;

struct PixMap {
    Ptr baseAddr;
    int16_t rowBytes;  // the two upper bits are flags, not part of the number
    Rect bounds;
    int16_t pixelSize;
};
using PixMapHandle = PixMap **;
using BitMap = PixMap;  // all pictures have the same depth

struct PenState {
    Point pnLoc;
    Point pnSize;
    int16_t pnMode;
};

struct GDevice {
    Rect gdRect;
};
using GDHandle = GDevice **;

struct MacRegion {
    Rect rgnBBox;
};
using RgnHandle = MacRegion **;

struct ColorTable;
using CTabHandle = ColorTable **;

constexpr GWorldFlags useTempMem = 4;
constexpr int16_t srcCopy = 0;

void OffsetRect(Rect *rect, int16_t dh, int16_t dv);
void InsetRect(Rect *rect, int16_t dh, int16_t dv);

// The screen that has the menu bar.
GDHandle GetMainDevice();
// Sets the arrow cursor.
void InitCursor();

void GetPort(GrafPtr *port);
void SetPort(GrafPtr port);
// There is only one device, so these just get and set the graphics world.
void GetGWorld(CGrafPtr *port, GDHandle *device);
void SetGWorld(CGrafPtr port, GDHandle device);

// `depth` must be 32. On failure `*world` is null: memFullErr, or paramErr when a row would not fit
// `rowBytes`.
OSErr NewGWorld(GWorldPtr *world, int16_t depth, const Rect *bounds, CTabHandle colors, GDHandle device,
                GWorldFlags flags);
void DisposeGWorld(GWorldPtr world);
PixMapHandle GetGWorldPixMap(GWorldPtr world);
// Pixels never move, so locking merely states intent.
Boolean LockPixels(PixMapHandle pixels);
void UnlockPixels(PixMapHandle pixels);
Ptr GetPixBaseAddr(PixMapHandle pixels);

void RGBForeColor(const RGBColor *color);
void RGBBackColor(const RGBColor *color);
void GetPenState(PenState *state);
void SetPenState(const PenState *state);
// Both use the foreground colour; the frame lies inside the rectangle and is as thick as the pen.
void PaintRect(const Rect *rect);
void FrameRect(const Rect *rect);

const BitMap *GetPortBitMapForCopyBits(CGrafPtr port);
// Black becomes the current port's foreground colour, and white its background colour. The rectangles must be
// the same size, the mode srcCopy, and the mask null.
void CopyBits(const BitMap *source, const BitMap *destination, const Rect *sourceRect,
              const Rect *destinationRect, int16_t mode, RgnHandle mask);
