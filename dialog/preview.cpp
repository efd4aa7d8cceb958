#include "dialog/preview.h"

#include <algorithm>
#include <cstddef>

#include "dialog/copy_colors.h"
#include "dialog/work_line.h"
#include "median/hybrid_filter.h"
#include "platform/memory.h"

namespace {

constexpr int16_t kWorkBytesPerPixel = 3;
constexpr int16_t kPictureDepth = 32;  // a pixel is the bytes 0, R, G, B
constexpr int32_t kPictureBytesPerPixel = kPictureDepth / 8;
constexpr int32_t kRowBytesMask = 0x3FFF;             // the two upper bits of rowBytes are flags
constexpr RGBColor kGray = {0x7FFF, 0x7FFF, 0x7FFF};  // what a small image leaves of the frame

GWorldPtr MakePicture(const Rect &frame) {
    Rect bounds = frame;
    OffsetRect(&bounds, static_cast<int16_t>(-frame.left), static_cast<int16_t>(-frame.top));
    GWorldPtr picture;
    if (NewGWorld(&picture, kPictureDepth, &bounds, nullptr, nullptr, useTempMem) != noErr) {
        return nullptr;
    }
    CGrafPtr savedPort;
    GDHandle savedDevice;
    GetGWorld(&savedPort, &savedDevice);
    LockPixels(GetGWorldPixMap(picture));
    SetGWorld(picture, nullptr);
    RGBForeColor(&kGray);
    PaintRect(&bounds);
    SetCopyColors();
    UnlockPixels(GetGWorldPixMap(picture));
    SetGWorld(savedPort, savedDevice);
    return picture;
}

void FillWorkImage(const Preview &preview, const LineLayout &layout, uint8_t *line) {
    const Rect &visible = preview.visible;
    const int32_t count = (visible.right - visible.left + 2 * kLineMargin) * kWorkBytesPerPixel;
    for (int32_t row = visible.top - kLineMargin; row < visible.bottom + kLineMargin; ++row) {
        ReadWorkLine(preview.source, layout, std::clamp(row, 0, preview.height - 1), line);
        PutLine(preview.work, 0, row - visible.top + kLineMargin, count,
                line + ptrdiff_t{visible.left} * kWorkBytesPerPixel);
    }
}

void FillPicture(const Preview &preview, uint8_t *line) {
    if (preview.picture == nullptr) {
        return;
    }
    CGrafPtr savedPort;
    GDHandle savedDevice;
    GetGWorld(&savedPort, &savedDevice);
    PixMapHandle pixels = GetGWorldPixMap(preview.picture);
    LockPixels(pixels);
    SetGWorld(preview.picture, nullptr);
    const Rect &visible = preview.visible;
    const int32_t width = visible.right - visible.left;
    auto *row = reinterpret_cast<uint8_t *>(GetPixBaseAddr(pixels));
    for (int32_t y = kLineMargin; y < visible.bottom - visible.top + kLineMargin; ++y) {
        GetLine(preview.work, kLineMargin * kWorkBytesPerPixel, y, width * kWorkBytesPerPixel, line);
        const uint8_t *color = line;
        for (uint8_t *pixel = row; pixel < row + ptrdiff_t{width} * kPictureBytesPerPixel;
             pixel += kPictureBytesPerPixel) {
            pixel[0] = 0;
            std::copy_n(color, kWorkBytesPerPixel, pixel + 1);
            color += kWorkBytesPerPixel;
        }
        row += (*pixels)->rowBytes & kRowBytesMask;
    }
    SetGWorld(savedPort, savedDevice);
    UnlockPixels(pixels);
}

}  // namespace

Preview MakePreview(NamedImage *source, const RunContext *context, const Rect &frame) {
    ImageData data;
    GetImageData(source, &data);
    Preview preview = {};
    preview.source = source;
    preview.context = context;
    preview.width = data.width;
    preview.height = data.height;
    preview.visible.right = std::min(data.width, static_cast<int16_t>(frame.right - frame.left));
    preview.visible.bottom = std::min(data.height, static_cast<int16_t>(frame.bottom - frame.top));
    preview.workStatus = MakeTempImage(static_cast<int16_t>(preview.visible.right + 2 * kLineMargin),
                                       static_cast<int16_t>(preview.visible.bottom + 2 * kLineMargin),
                                       kWorkBytesPerPixel, &preview.work);
    preview.picture = MakePicture(frame);
    return preview;
}

void MoveVisible(Preview *preview, int16_t left, int16_t top) {
    OffsetRect(&preview->visible, static_cast<int16_t>(left - preview->visible.left),
               static_cast<int16_t>(top - preview->visible.top));
}

void BuildPreview(const Preview &preview, bool filtered, float radius) {
    if (preview.workStatus != noErr) {
        return;
    }
    const LineLayout layout = LineLayoutOf(preview.source, preview.context);
    uint8_t *line = NewLineBuffer(layout);
    if (line == nullptr) {
        return;
    }
    FillWorkImage(preview, layout, line);
    if (filtered) {
        // Shows no progress and cannot be cancelled, so the progress values do not matter.
        NewHyMedian(preview.work, radius, false, preview.context, 1, 2, 3);
    }
    FillPicture(preview, line);
}
