// The picture as the filter sees it: its shape, the samples it came with, and the samples filtered so far.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "platform/types.h"

// Longer sides are refused: the filter's interface counts rows and columns in 16 bits.
constexpr int32_t kMaxSide = 30000;
// As many channels as documents of this interface have at most.
constexpr int32_t kMaxPlanes = 56;

struct PixelUnmapper {
    size_t size = 0;
    void operator()(uint8_t *pixels) const;
};
using PixelBlock = std::unique_ptr<uint8_t[], PixelUnmapper>;

struct Document {
    int16_t imageMode = 0;    // as in photoshop/image_modes.h
    int32_t depth = 0;        // bits per sample: 8, 16 or 32
    int32_t colorPlanes = 0;  // of the mode
    int32_t planes = 0;       // colour planes first, extra planes behind
    int32_t width = 0;        // 1 to kMaxSide
    int32_t height = 0;
    Fixed horizontalResolution = 0;  // pixels per inch
    Fixed verticalResolution = 0;

    // Where the document was read from; none for a name that the File Manager cannot hold.
    std::optional<FSSpec> file;

    // In the file's sample format (16-bit white is 65535), interleaved, rows without padding.
    PixelBlock source;
    PixelBlock destination;
};

int32_t SampleBytes(const Document &document);
int64_t RowBytes(const Document &document);
int64_t PixelBytes(const Document &document);  // of one whole block

// Maps both blocks, zeroed; false when memory is short.
bool MapPixels(Document *document);
// Makes the destination a copy of the source.
void ResetDestination(Document *document);
