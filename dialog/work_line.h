// One row of the image on its way into the preview's work image: 8-bit RGB, with the edge pixel repeated six
// times on either side.
#pragma once

#include "hybridmedian/public.h"
#include "toolkit/run_context.h"

// In pixels: at its largest radius the filter looks this far.
constexpr int32_t kLineMargin = kMaxRadius;

struct LineLayout {
    int32_t width;
    int32_t samplesPerPixel;
    int32_t bytesPerSample;
};

LineLayout LineLayoutOf(const NamedImage *image, const RunContext *context);

// A zero-filled buffer for one row; null when memory is short. The dialog never frees it.
uint8_t *NewLineBuffer(const LineLayout &layout);

// Image pixel x goes to pixel x + kLineMargin of the line. Anything but RGB is treated as grey and arrives
// shifted: its last six columns come out black.
void ReadWorkLine(NamedImage *image, const LineLayout &layout, int32_t row, uint8_t *line);
