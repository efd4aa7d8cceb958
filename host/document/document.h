// The picture as the filter sees it: its shape, the samples it came with, and the samples filtered so far.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

#include "photoshop/document_info.h"
#include "platform/types.h"

// Whether workers map a block, too. Shared memory takes several times as long to get.
enum class Sharing : uint8_t { none, withWorkers };

// The most channels that a document of this interface can have.
constexpr int32_t kMaxPlanes = 56;

struct PixelUnmapper {
    size_t size = 0;      // 0 for a borrowed block
    int descriptor = -1;  // of shared memory, through which another process maps the same block
    void operator()(uint8_t *pixels) const;
};
using PixelBlock = std::unique_ptr<uint8_t[], PixelUnmapper>;

// The floats of a document that the filter is shown as black and as white.
struct SampleRange {
    float least = 0;
    float greatest = 1;
};

// What a document is, apart from its samples.
struct DocumentShape {
    int16_t imageMode = 0;    // as in photoshop/image_modes.h
    int32_t depth = 0;        // bits per sample: 8, 16 or 32
    int32_t colorPlanes = 0;  // as the mode has them
    int32_t planes = 0;       // colour planes first, then extra planes
    // The extra plane that is transparency, 0 for none. The filter is shown no other extra plane.
    int32_t transparency = 0;
    SampleRange range;  // of a document of floats
    int32_t width = 0;
    int32_t height = 0;
    Fixed horizontalResolution = 0;  // pixels per inch
    Fixed verticalResolution = 0;

    // Where the document was read from; none for a name that the File Manager cannot hold.
    std::optional<FSSpec> file;

    // What to filter: a rectangle inside the document; without one, all of it.
    std::optional<VRect> selection;
};

struct Document : DocumentShape {
    // Interleaved, rows without padding. 16-bit samples go up to 65535; a and b of Lab are offset by half
    // their range; 8-bit CMYK is inverted, 255 being no ink.
    PixelBlock source;
    PixelBlock destination;

    // How much of a pixel is selected: one byte per pixel, 255 being all of it. Null when everything is.
    PixelBlock mask;
};

// What the filter is shown of the document: colours and transparency, and floats as 16-bit samples.
int16_t ShownMode(const DocumentShape &document);
int32_t ShownDepth(const DocumentShape &document);
int32_t ShownPlanes(const DocumentShape &document);

int32_t SampleBytes(const DocumentShape &document);
int64_t RowBytes(const DocumentShape &document);
int64_t PixelBytes(const DocumentShape &document);  // of one block
int64_t MaskBytes(const DocumentShape &document);
VRect WholeRect(const DocumentShape &document);
VRect SelectedRect(const DocumentShape &document);
int32_t WidthOf(const VRect &rect);
int32_t HeightOf(const VRect &rect);

// Whether the machine could ever hold a block of that size.
bool FitsIntoMemory(int64_t size);
// Zeroed; null when memory is short.
PixelBlock MapBlock(int64_t size, Sharing sharing);
// Maps another process's block; takes ownership of the descriptor.
PixelBlock MapShared(int descriptor, int64_t size);
// A part of another block, which must outlive it.
PixelBlock Borrow(const PixelBlock &block, int64_t offset);

// Maps both blocks; false when memory is short.
bool MapPixels(Sharing sharing, Document *document);
// Fills a row of both blocks; false when memory is short.
bool FillRow(Document *document, int64_t y, const uint8_t *samples);
// Copies the rectangle from the source to the destination.
void ResetDestination(Document *document, const VRect &rect);
