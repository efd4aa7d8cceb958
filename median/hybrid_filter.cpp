// Streams an image through the kernel, which filters a block of lines at a time; each step writes one line
// back.
#include "median/hybrid_filter.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "median/kernel/hybrid_kernel.h"
#include "platform/owned_block.h"

namespace {

// Steps before the first line is written, in addition to one per line. Hosts see them in the progress.
constexpr int32_t kLeadingSteps = 2 * kHybridMaxRadius;

// Larger blocks are no faster.
constexpr int32_t kMaxBlockLines = 32;
constexpr int32_t kMaxWindowLines = kMaxBlockLines + 2 * kHybridMaxRadius;

struct Layout {
    int16_t bytesPerPixel;
    PixelFormat format;
};

constexpr Layout kLayouts[] = {
    {1, PixelFormat::gray8},
    {2, PixelFormat::gray16},
    {3, PixelFormat::rgb8},
    {6, PixelFormat::rgb16},
};

// Null for a layout that the filter leaves alone.
const Layout *FindLayout(int16_t bytesPerPixel) {
    const auto *found = std::find_if(std::begin(kLayouts), std::end(kLayouts), [=](const Layout &layout) {
        return layout.bytesPerPixel == bytesPerPixel;
    });
    return found == std::end(kLayouts) ? nullptr : found;
}

int32_t WholeRadius(float radius) {
    if (radius >= float{kHybridMaxRadius}) {
        return kHybridMaxRadius;
    }
    return radius >= float{kHybridMinRadius} ? static_cast<int32_t>(radius) : 0;
}

// The lines around a block, each fetched once and before it is overwritten, and the block's filtered lines.
struct Stream {
    NamedImage *image;
    PixelFormat format;
    int32_t radius;  // 0 leaves lines unchanged
    int32_t width;
    int32_t height;
    int32_t rowBytes;
    const HybridKernel *kernel;
    int32_t blockLines;
    int32_t windowLines;
    int32_t fetchedLines;  // counted from the image's top
    OwnedBlock<uint8_t> window;
    OwnedBlock<uint8_t> filtered;
    OwnedBlock<uint8_t> scratch;
};

bool AllocateBuffers(Stream *stream) {
    stream->window = MakeOwnedBlock<uint8_t>(int64_t{stream->windowLines} * stream->rowBytes);
    stream->filtered = MakeOwnedBlock<uint8_t>(int64_t{stream->blockLines} * stream->rowBytes);
    const size_t scratchBytes =
        stream->radius == 0 ? 0 : stream->kernel->scratchBytes(stream->format, stream->radius);
    stream->scratch = MakeOwnedBlock<uint8_t>(static_cast<int64_t>(scratchBytes + kHybridScratchAlignment));
    return stream->window != nullptr && stream->filtered != nullptr && stream->scratch != nullptr;
}

uint8_t *WindowLine(const Stream &stream, int32_t y) {
    const int32_t clamped = std::clamp(y, 0, stream.height - 1);
    return stream.window.get() + int64_t{clamped % stream.windowLines} * stream.rowBytes;
}

uint8_t *FilteredLine(const Stream &stream, int32_t y) {
    return stream.filtered.get() + int64_t{y % stream.blockLines} * stream.rowBytes;
}

OSErr FetchLines(Stream *stream, int32_t end) {
    OSErr err = noErr;
    for (; err == noErr && stream->fetchedLines < std::min(end, stream->height); ++stream->fetchedLines) {
        err = GetLine(stream->image, 0, stream->fetchedLines, stream->rowBytes,
                      WindowLine(*stream, stream->fetchedLines));
    }
    return err;
}

void *AlignedScratch(const Stream &stream) {
    void *scratch = stream.scratch.get();
    size_t space = static_cast<size_t>(GetPtrSize(static_cast<Ptr>(scratch)));
    return std::align(kHybridScratchAlignment, space - kHybridScratchAlignment, scratch, space);
}

OSErr FilterBlock(Stream *stream, int32_t firstLine) {
    const int32_t lines = std::min(stream->blockLines, stream->height - firstLine);
    const OSErr err = FetchLines(stream, firstLine + lines + stream->radius);
    if (err != noErr) {
        return err;
    }
    if (stream->radius == 0) {
        for (int32_t y = firstLine; y < firstLine + lines; ++y) {
            BlockMoveData(WindowLine(*stream, y), FilteredLine(*stream, y), stream->rowBytes);
        }
        return noErr;
    }
    const void *source[kMaxWindowLines];
    void *target[kMaxBlockLines];
    for (int32_t i = 0; i < lines + 2 * stream->radius; ++i) {
        source[i] = WindowLine(*stream, firstLine - stream->radius + i);
    }
    for (int32_t i = 0; i < lines; ++i) {
        target[i] = FilteredLine(*stream, firstLine + i);
    }
    stream->kernel->filter({stream->format, stream->radius, stream->width, lines, 0, stream->width, source,
                            target, AlignedScratch(*stream)});
    return noErr;
}

OSErr WriteFilteredLine(Stream *stream, int32_t y) {
    const OSErr err = y % stream->blockLines == 0 ? FilterBlock(stream, y) : noErr;
    return err != noErr ? err : PutLine(stream->image, 0, y, stream->rowBytes, FilteredLine(*stream, y));
}

}  // namespace

OSErr NewHyMedian(NamedImage *image, float radius, Boolean showProgress, const RunContext *context,
                  int32_t progressStart, int32_t progressEnd, int32_t progressTotal) {
    ImageData data;
    GetImageData(image, &data);
    const Layout *layout = FindLayout(data.bytesPerPixel);
    if (layout == nullptr || data.width < 1 || data.height < 1) {
        return noErr;
    }
    Stream stream = {};
    stream.image = image;
    stream.format = layout->format;
    stream.radius = WholeRadius(radius);
    stream.width = data.width;
    stream.height = data.height;
    stream.rowBytes = data.width * data.bytesPerPixel;
    stream.kernel = SelectHybridKernel();
    stream.blockLines = std::clamp(stream.kernel->pixelsPerBlock / stream.width, 1, kMaxBlockLines);
    stream.windowLines = stream.blockLines + 2 * stream.radius;
    if (!AllocateBuffers(&stream)) {
        return memFullErr;
    }

    const int32_t steps = stream.height + kLeadingSteps;
    for (int32_t t = 0; t < steps; ++t) {
        if (showProgress) {
            const auto share = int64_t{progressEnd - progressStart} * t * 100 / steps;
            DoProgress(context, static_cast<int32_t>(share) + progressStart * 100, progressTotal * 100);
            if (CommandPeriod(context)) {
                return userCanceledErr;
            }
        }
        const OSErr err = t < kLeadingSteps ? noErr : WriteFilteredLine(&stream, t - kLeadingSteps);
        if (err != noErr) {
            return err;
        }
    }
    return noErr;
}
