// Owns the current port.
#include "platform/quickdraw.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>

#include "platform/dialog_backend.h"
#include "platform/internal/port.h"
#include "platform/memory.h"

namespace {

constexpr int32_t kBytesPerPixel = 4;
// Rows are padded, so rowBytes exceeds the pixels' own bytes, as callers must allow for.
constexpr int32_t kRowAlignment = 16;
// All but the two flag bits of rowBytes.
constexpr int32_t kRowBytesMask = 0x3FFF;
constexpr int16_t kPixMapFlag = INT16_MIN;
constexpr RGBColor kBlack = {0, 0, 0};
constexpr RGBColor kWhite = {0xFFFF, 0xFFFF, 0xFFFF};
constexpr PenState kNormalPen = {{0, 0}, {1, 1}, srcCopy};

GrafPort desktopPort = {{}, nullptr, nullptr, kBlack, kWhite, kNormalPen, {}, {}};
GrafPort *currentPort = &desktopPort;

// One pixel's four bytes.
struct Pixel {
    uint8_t bytes[kBytesPerPixel];
};

Pixel PixelOf(const RGBColor &color) {
    return {{0, static_cast<uint8_t>(color.red >> 8), static_cast<uint8_t>(color.green >> 8),
             static_cast<uint8_t>(color.blue >> 8)}};
}

void NoteDrawn(const Rect &rect) {
    currentPort->drawn = ports::Enclosing(currentPort->drawn, rect);
}

}  // namespace

OSErr ports::InitPort(GrafPort *port, const Rect &bounds, bool temporaryMemory) {
    const int32_t width = std::max(bounds.right - bounds.left, 0);
    const int32_t height = std::max(bounds.bottom - bounds.top, 0);
    const int32_t rowBytes = (width * kBytesPerPixel / kRowAlignment + 1) * kRowAlignment;
    if (rowBytes > kRowBytesMask) {
        return paramErr;
    }
    const int64_t size = int64_t{rowBytes} * height;
    OSErr err = noErr;
    Handle pixels = temporaryMemory ? TempNewHandle(size, &err) : NewHandle(size);
    if (pixels == nullptr) {
        return memFullErr;
    }
    std::memset(*pixels, 0, static_cast<size_t>(size));
    *port = {{*pixels, static_cast<int16_t>(rowBytes | kPixMapFlag), bounds, kBytesPerPixel * 8},
             &port->pixMap,
             pixels,
             kBlack,
             kWhite,
             kNormalPen,
             {},
             {}};
    return noErr;
}

void ports::ReleasePort(GrafPort *port) {
    if (currentPort == port) {
        currentPort = &desktopPort;
    }
    DisposeHandle(port->pixels);
}

uint8_t *ports::PixelAt(const PixMap &picture, int32_t h, int32_t v) {
    const int64_t rowBytes = picture.rowBytes & kRowBytesMask;
    return reinterpret_cast<uint8_t *>(picture.baseAddr) + (v - picture.bounds.top) * rowBytes +
           ptrdiff_t{h - picture.bounds.left} * kBytesPerPixel;
}

bool ports::Contains(const Rect &rect, Point point) {
    return point.v >= rect.top && point.v < rect.bottom && point.h >= rect.left && point.h < rect.right;
}

Rect ports::Common(const Rect &a, const Rect &b) {
    return {std::max(a.top, b.top), std::max(a.left, b.left), std::min(a.bottom, b.bottom),
            std::min(a.right, b.right)};
}

Rect ports::Enclosing(const Rect &a, const Rect &b) {
    if (IsEmpty(a) || IsEmpty(b)) {
        return IsEmpty(a) ? b : a;
    }
    return {std::min(a.top, b.top), std::min(a.left, b.left), std::max(a.bottom, b.bottom),
            std::max(a.right, b.right)};
}

bool ports::IsEmpty(const Rect &rect) {
    return rect.top >= rect.bottom || rect.left >= rect.right;
}

bool ports::IsSound(const Rect &rect) {
    const int32_t width = rect.right - rect.left;
    const int32_t height = rect.bottom - rect.top;
    return width >= 0 && width <= INT16_MAX && height >= 0 && height <= INT16_MAX;
}

bool ports::Holds(const Rect &outer, const Rect &inner) {
    return inner.top >= outer.top && inner.left >= outer.left && inner.bottom <= outer.bottom &&
           inner.right <= outer.right;
}

void OffsetRect(Rect *rect, int16_t dh, int16_t dv) {
    *rect = {static_cast<int16_t>(rect->top + dv), static_cast<int16_t>(rect->left + dh),
             static_cast<int16_t>(rect->bottom + dv), static_cast<int16_t>(rect->right + dh)};
}

void InsetRect(Rect *rect, int16_t dh, int16_t dv) {
    *rect = {static_cast<int16_t>(rect->top + dv), static_cast<int16_t>(rect->left + dh),
             static_cast<int16_t>(rect->bottom - dv), static_cast<int16_t>(rect->right - dh)};
}

GDHandle GetMainDevice() {
    static GDevice device;
    static GDevice *master = &device;
    device.gdRect = CurrentDialogBackend().screen();
    return &master;
}

// Neither back end ever changes the cursor.
void InitCursor() {}

void GetPort(GrafPtr *port) {
    *port = currentPort;
}

void SetPort(GrafPtr port) {
    currentPort = port == nullptr ? &desktopPort : port;
}

void GetGWorld(CGrafPtr *port, GDHandle *device) {
    GetPort(port);
    *device = nullptr;
}

void SetGWorld(CGrafPtr port, GDHandle) {
    SetPort(port);
}

OSErr NewGWorld(GWorldPtr *world, int16_t depth, const Rect *bounds, CTabHandle, GDHandle,
                GWorldFlags flags) {
    *world = nullptr;
    if (depth != kBytesPerPixel * 8) {
        return paramErr;
    }
    auto *port = new (std::nothrow) GrafPort;
    if (port == nullptr) {
        return memFullErr;
    }
    if (const OSErr err = ports::InitPort(port, *bounds, (flags & useTempMem) != 0); err != noErr) {
        delete port;
        return err;
    }
    *world = port;
    return noErr;
}

void DisposeGWorld(GWorldPtr world) {
    if (world != nullptr) {
        ports::ReleasePort(world);
        delete world;
    }
}

PixMapHandle GetGWorldPixMap(GWorldPtr world) {
    return &world->pixMapMaster;
}

Boolean LockPixels(PixMapHandle) {
    return true;
}

void UnlockPixels(PixMapHandle) {}

Ptr GetPixBaseAddr(PixMapHandle pixels) {
    return (*pixels)->baseAddr;
}

void RGBForeColor(const RGBColor *color) {
    currentPort->foreColor = *color;
}

void RGBBackColor(const RGBColor *color) {
    currentPort->backColor = *color;
}

void GetPenState(PenState *state) {
    *state = currentPort->pen;
}

void SetPenState(const PenState *state) {
    currentPort->pen = *state;
}

void PaintRect(const Rect *rect) {
    const Rect area = ports::Common(*rect, currentPort->pixMap.bounds);
    if (ports::IsEmpty(area)) {
        return;
    }
    const Pixel pixel = PixelOf(currentPort->foreColor);
    for (int32_t v = area.top; v < area.bottom; ++v) {
        for (int32_t h = area.left; h < area.right; ++h) {
            std::copy_n(pixel.bytes, kBytesPerPixel, ports::PixelAt(currentPort->pixMap, h, v));
        }
    }
    NoteDrawn(area);
}

void FrameRect(const Rect *rect) {
    const auto [top, left, bottom, right] = *rect;
    const Point pen = currentPort->pen.pnSize;
    const Rect sides[] = {
        {top, left, static_cast<int16_t>(top + pen.v), right},
        {static_cast<int16_t>(bottom - pen.v), left, bottom, right},
        {top, left, bottom, static_cast<int16_t>(left + pen.h)},
        {top, static_cast<int16_t>(right - pen.h), bottom, right},
    };
    for (const Rect &side : sides) {
        PaintRect(&side);
    }
}

const BitMap *GetPortBitMapForCopyBits(CGrafPtr port) {
    return &port->pixMap;
}

void CopyBits(const BitMap *source, const BitMap *destination, const Rect *sourceRect,
              const Rect *destinationRect, int16_t, RgnHandle) {
    // The distance between two rectangles may not fit 16 bits.
    const int32_t dh = destinationRect->left - sourceRect->left;
    const int32_t dv = destinationRect->top - sourceRect->top;
    const Rect from = ports::Common(*sourceRect, source->bounds);
    Rect area = ports::Common(*destinationRect, destination->bounds);
    area.top = static_cast<int16_t>(std::clamp<int32_t>(from.top + dv, area.top, INT16_MAX));
    area.left = static_cast<int16_t>(std::clamp<int32_t>(from.left + dh, area.left, INT16_MAX));
    area.bottom = static_cast<int16_t>(std::clamp<int32_t>(from.bottom + dv, INT16_MIN, area.bottom));
    area.right = static_cast<int16_t>(std::clamp<int32_t>(from.right + dh, INT16_MIN, area.right));
    if (ports::IsEmpty(area)) {
        return;
    }
    const Pixel fore = PixelOf(currentPort->foreColor);
    const Pixel back = PixelOf(currentPort->backColor);
    for (int32_t v = area.top; v < area.bottom; ++v) {
        for (int32_t h = area.left; h < area.right; ++h) {
            const uint8_t *pixel = ports::PixelAt(*source, h - dh, v - dv);
            uint8_t *copy = ports::PixelAt(*destination, h, v);
            for (int32_t i = 0; i < kBytesPerPixel; ++i) {
                copy[i] = static_cast<uint8_t>((pixel[i] & back.bytes[i]) | (~pixel[i] & fore.bytes[i]));
            }
        }
    }
    if (destination == &currentPort->pixMap) {
        NoteDrawn(area);
    }
}
