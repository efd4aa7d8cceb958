// One tile of an image through the kernel.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include "float_lines.h"
#include "hymedian.h"
#include "median/kernel/hybrid_kernel.h"

// What all tiles have in common.
struct TileFilter {
    const hymedian_image *input;
    hymedian_image output;
    int64_t x, y;  // of the output's first pixel in the input
    FloatImage floats;
    int radius;
    PixelFormat format;
    const HybridKernel *kernel;
    int64_t tileWidth, tileHeight;  // at most
};

struct OutputTile {
    int64_t x, y, width, height;
};

struct AlignedDeleter {
    void operator()(uint8_t *block) const;
};
// Working memory of one tile at a time; the contents do not matter.
using TileMemory = std::unique_ptr<uint8_t[], AlignedDeleter>;

// Sets the format, the kernel, and the size of tiles, for so many threads.
void PlanTiles(int threads, TileFilter *filter);
// Null when memory is short.
TileMemory MakeTileMemory(const TileFilter &filter);
void FilterTile(const TileFilter &filter, const OutputTile &tile, uint8_t *memory);
