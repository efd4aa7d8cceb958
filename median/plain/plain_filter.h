// The hybrid median filter by definition, pixel by pixel. The kernels give the same results faster; they are
// tested and benchmarked against this.
#pragma once

#include <cstdint>

#include "median/kernel/hybrid_kernel.h"

// A whole image in memory, rows without gaps, compared by all of its samples as they are.
struct PlainImage {
    PixelFormat format;
    int32_t width;
    int32_t height;
    const uint8_t *bytes;
};

// `filtered` is as large as the image. Radius 1 to 6.
void FilterPlainly(const PlainImage &image, int32_t radius, uint8_t *filtered);
