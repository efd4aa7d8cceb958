#include "dialog/work_line.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "platform/memory.h"

namespace {

constexpr int32_t kRGB = 3;

uint8_t *PixelAt(uint8_t *line, int32_t pixel) {
    return line + ptrdiff_t{pixel} * kRGB;
}

// Maps 0..32768 to 0..255. The factor is 2/257: twice a sample is at most 65536, and 65535 is 255 * 257.
uint8_t NarrowedSample(uint16_t sample) {
    const double scaled = sample * 0.007782101167315175 + 0.5;
    return static_cast<uint8_t>(std::min(scaled, 255.0));
}

// In place: no byte is written before the sample in its place has been read.
void NarrowSamples(uint8_t *line, int32_t first, int32_t count) {
    for (int32_t i = first; i < first + count; ++i) {
        uint16_t sample;
        std::memcpy(&sample, line + ptrdiff_t{i} * ptrdiff_t{sizeof sample}, sizeof sample);
        line[i] = NarrowedSample(sample);
    }
}

// Works from the right, so that no sample is overwritten before it is spread. Pixel p takes byte p, although
// the row's first sample is at kLineMargin. The shift is deliberate: it is how previews of grey images look.
void SpreadGray(uint8_t *line, int32_t width) {
    for (int32_t p = width - 1; p >= 0; --p) {
        std::fill_n(PixelAt(line, p), kRGB, line[p]);
    }
    std::fill_n(PixelAt(line, width), kLineMargin * kRGB, uint8_t{0});
}

void RepeatEdgePixels(uint8_t *line, int32_t width) {
    const uint8_t *first = PixelAt(line, kLineMargin);
    const uint8_t *last = PixelAt(line, width + kLineMargin - 1);
    for (int32_t p = 0; p < kLineMargin; ++p) {
        std::copy_n(first, kRGB, PixelAt(line, p));
        std::copy_n(last, kRGB, PixelAt(line, width + kLineMargin + p));
    }
}

}  // namespace

LineLayout LineLayoutOf(const NamedImage *image, const RunContext *context) {
    ImageData data;
    GetImageData(image, &data);
    const int32_t bytes = data.bytesPerPixel;
    // A CMYK run: its rows are packed RGB, although the image has room for four samples per pixel.
    if (std::abs(context->colorPlanes) == kRGB && (bytes == 4 || bytes == 8)) {
        return {data.width, kRGB, bytes / 4};
    }
    const bool deep = bytes == 2 || bytes == 6;
    return {data.width, deep ? bytes / 2 : bytes, deep ? 2 : 1};
}

uint8_t *NewLineBuffer(const LineLayout &layout) {
    // In samples: a padded RGB line and nine to spare, which more than three samples per pixel can outgrow.
    const int32_t stated = (layout.width + 2 * kLineMargin) * kRGB + 9;
    const int32_t needed = (layout.width + kLineMargin) * layout.samplesPerPixel;
    return reinterpret_cast<uint8_t *>(
        NewPtrClear(int64_t{std::max(stated, needed)} * layout.bytesPerSample));
}

void ReadWorkLine(NamedImage *image, const LineLayout &layout, int32_t row, uint8_t *line) {
    const int32_t first = kLineMargin * layout.samplesPerPixel;
    const int32_t count = layout.width * layout.samplesPerPixel;
    GetLine(image, 0, row, count * layout.bytesPerSample, line + ptrdiff_t{first} * layout.bytesPerSample);
    if (layout.bytesPerSample == 2) {
        NarrowSamples(line, first, count);
    }
    if (layout.samplesPerPixel != kRGB) {
        SpreadGray(line, layout.width);
    }
    RepeatEdgePixels(line, layout.width);
}
