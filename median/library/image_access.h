// Pixels of the caller's images, whatever their strides.
#pragma once

#include <cstddef>
#include <cstdint>

#include "hymedian.h"

struct ByteRange {
    uintptr_t first;
    uintptr_t end;
};

// Bytes of a pixel whose components follow each other.
inline int64_t PixelBytes(const hymedian_image &image) {
    return int64_t{image.components} * image.sample;
}

inline uint8_t *PixelAt(const hymedian_image &image, int64_t x, int64_t y) {
    return static_cast<uint8_t *>(image.pixels) + y * image.row_stride + x * image.pixel_stride;
}

// From the image's first byte to behind its last one; false if strides lead out of memory.
bool FindBytes(const hymedian_image &image, ByteRange *range);

// Whether every sample has bytes of its own. True also for some images only if strides are multiples of each
// other, as those of arrays are.
bool HasSamplesApart(const hymedian_image &image);

// Copy `count` pixels of a row, from column x on, to packed ones, and back.
void TakePixels(const hymedian_image &image, int64_t x, int64_t y, int64_t count, uint8_t *packed);
void StorePixels(const uint8_t *packed, int64_t x, int64_t y, int64_t count, const hymedian_image &image);
