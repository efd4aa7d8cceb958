#include "tile_filter.h"

#include <algorithm>
#include <new>

#include "image_access.h"

namespace {

// Tiles repeat the distances of the lines around them, and are the more work for it the lower they are; yet
// the last ones must not keep one thread busy for long.
constexpr int64_t kMaxTileWidth = 1920;
constexpr int64_t kMaxTileHeight = 128;
constexpr int64_t kMinTileHeight = 16;
constexpr int64_t kMaxLines = kMaxTileHeight + int64_t{2} * kHybridMaxRadius;

constexpr int64_t PartsOf(int64_t whole, int64_t most) {
    return (whole - 1) / most + 1;
}

PixelFormat FormatOf(const hymedian_image &image) {
    const bool gray = image.components == 1;
    switch (image.sample) {
        case HYMEDIAN_UINT8:
            return gray ? PixelFormat::gray8 : PixelFormat::rgb8;
        case HYMEDIAN_UINT16:
            return gray ? PixelFormat::gray16Full : PixelFormat::rgb16Full;
        default:
            return gray ? PixelFormat::gray16Tagged : PixelFormat::rgb16Tagged;
    }
}

bool IsTagged(const TileFilter &filter) {
    return filter.input->sample == HYMEDIAN_FLOAT32;
}

// Of a pixel in the kernel's lines.
int64_t LinePixelBytes(const TileFilter &filter) {
    return IsTagged(filter) ? (filter.input->components + 1) * int64_t{sizeof(uint16_t)}
                            : PixelBytes(*filter.input);
}

// Lines begin at even addresses.
int64_t LineBytes(const TileFilter &filter) {
    return ((filter.tileWidth + int64_t{2} * filter.radius) * LinePixelBytes(filter) + 1) / 2 * 2;
}

int64_t ScratchBytes(const TileFilter &filter) {
    return static_cast<int64_t>(filter.kernel->scratchBytes(filter.format, filter.radius));
}

// Floats are packed here once the kernel is done.
int64_t PackedBytes(const TileFilter &filter) {
    return IsTagged(filter) ? filter.tileWidth * PixelBytes(*filter.input) : 0;
}

void ReadLine(const TileFilter &filter, int64_t x, int64_t y, int64_t count, uint8_t *line) {
    if (IsTagged(filter)) {
        TagPixels(filter.floats, x, y, count, reinterpret_cast<uint16_t *>(line));
    } else {
        TakePixels(*filter.input, x, y, count, line);
    }
}

// Writes the output's pixels from (x, y) on; `packed` is working memory.
void WriteLine(const TileFilter &filter, const uint8_t *line, int64_t x, int64_t y, int64_t count,
               uint8_t *packed) {
    if (IsTagged(filter)) {
        TakeChosen(filter.floats, reinterpret_cast<const uint16_t *>(line), filter.x + x, filter.y + y, count,
                   packed);
        line = packed;
    }
    StorePixels(line, x, y, count, filter.output);
}

}  // namespace

void AlignedDeleter::operator()(uint8_t *block) const {
    ::operator delete[](block, std::align_val_t{kHybridScratchAlignment});
}

void PlanTiles(int threads, TileFilter *filter) {
    const hymedian_image &output = filter->output;
    filter->format = FormatOf(output);
    filter->kernel = SelectHybridKernel();
    filter->tileWidth = PartsOf(output.width, PartsOf(output.width, kMaxTileWidth));
    filter->tileHeight = std::clamp(
        PartsOf(output.height, int64_t{4} * threads), kMinTileHeight,
        std::clamp(filter->kernel->pixelsPerBlock / filter->tileWidth, kMinTileHeight, kMaxTileHeight));
}

TileMemory MakeTileMemory(const TileFilter &filter) {
    const int64_t lines = 2 * (filter.tileHeight + filter.radius);
    const int64_t bytes = ScratchBytes(filter) + lines * LineBytes(filter) + PackedBytes(filter);
    return TileMemory(new (std::align_val_t{kHybridScratchAlignment}, std::nothrow)
                          uint8_t[static_cast<size_t>(bytes)]);
}

void FilterTile(const TileFilter &filter, const OutputTile &tile, uint8_t *memory) {
    const hymedian_image &input = *filter.input;
    const int radius = filter.radius;
    const int64_t x = filter.x + tile.x;
    const int64_t y = filter.y + tile.y;
    const int64_t left = std::max<int64_t>(x - radius, 0);
    const int64_t right = std::min(x + tile.width + radius, input.width);
    const int64_t top = std::max<int64_t>(y - radius, 0);
    const int64_t bottom = std::min(y + tile.height + radius, input.height);

    uint8_t *const lines = memory + ScratchBytes(filter);
    uint8_t *const filtered = lines + (bottom - top) * LineBytes(filter);
    uint8_t *const packed = filtered + tile.height * LineBytes(filter);
    for (int64_t line = top; line < bottom; ++line) {
        ReadLine(filter, left, line, right - left, lines + (line - top) * LineBytes(filter));
    }
    const void *source[kMaxLines];
    void *target[kMaxTileHeight];
    for (int64_t i = 0; i < tile.height + int64_t{2} * radius; ++i) {
        const int64_t line = std::clamp<int64_t>(y - radius + i, 0, input.height - 1);
        source[i] = lines + (line - top) * LineBytes(filter);
    }
    for (int64_t i = 0; i < tile.height; ++i) {
        target[i] = filtered + i * LineBytes(filter);
    }
    const auto first = static_cast<int>(x - left);
    filter.kernel->filter({filter.format, radius, static_cast<int>(right - left),
                           static_cast<int>(tile.height), first, first + static_cast<int>(tile.width), source,
                           target, memory});
    for (int64_t i = 0; i < tile.height; ++i) {
        WriteLine(filter, filtered + i * LineBytes(filter) + first * LinePixelBytes(filter), tile.x,
                  tile.y + i, tile.width, packed);
    }
}
