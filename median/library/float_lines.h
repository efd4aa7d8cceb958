// Floats on their way through the kernel. It compares 16-bit steps, and each pixel is tagged with its place,
// by which the float itself is found again.
#pragma once

#include <cstdint>

#include "hymedian.h"

struct FloatImage {
    const hymedian_image *image;
    float least;
    float greatest;
    int radius;
};

// Widens the range to the finite samples of a row.
void WidenRange(const hymedian_image &image, int64_t y, float *least, float *greatest);

// Writes the steps and the tag of `count` pixels. One that is not finite takes the steps of the nearest one
// in its row that is, the left one of two, and keeps its own tag.
void TagPixels(const FloatImage &floats, int64_t x, int64_t y, int64_t count, uint16_t *tagged);

// Copies the pixels that the kernel chose for `count` pixels from (x, y) on to packed ones.
void TakeChosen(const FloatImage &floats, const uint16_t *chosen, int64_t x, int64_t y, int64_t count,
                uint8_t *packed);
