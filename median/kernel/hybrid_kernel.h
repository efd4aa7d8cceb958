// Hybrid vector median filter over a block of lines.
#pragma once

#include <cstddef>

// Lines are arrays of 8-bit or 16-bit samples, the latter aligned and in the machine's byte order; RGB
// samples are interleaved.
//
// Pixels are compared by their samples as they are, up to 255 or 32768. Those of the full formats go up to
// 65535 and are compared by their halves, rounded up. Those of the tagged formats have one more sample, which
// is not compared: it comes out with the pixel that it went in with.
enum class PixelFormat { gray8, gray16, rgb8, rgb16, gray16Full, rgb16Full, gray16Tagged, rgb16Tagged };

constexpr int kHybridMinRadius = 1;
constexpr int kHybridMaxRadius = 6;

// Describes the work: columns firstColumn .. lastColumn - 1 of lineCount successive lines.
struct HybridBlock {
    PixelFormat format;
    int radius;
    int width;
    int lineCount;
    int firstColumn, lastColumn;
    // lineCount + 2 * radius lines of width pixels; the first is radius lines above the first output line.
    // Lines beyond the top and bottom of the image repeat its first and last line.
    const void *const *source;
    // lineCount lines of width pixels, none of them a source line. Other columns are left alone.
    void *const *target;
    // At least scratchBytes() bytes, aligned to kHybridScratchAlignment; the contents do not matter. Blocks
    // filtered concurrently need separate scratch memory.
    void *scratch;
};

constexpr std::size_t kHybridScratchAlignment = 64;

struct HybridKernel {
    const char *name;
    // The number of pixels filtered in about ten milliseconds at the largest radius, for callers that check
    // for other work between blocks.
    int pixelsPerBlock;
    std::size_t (*scratchBytes)(PixelFormat format, int radius);
    void (*filter)(const HybridBlock &block);
};

// The kernels this machine can run, slowest first; ends with a null pointer. All give the same results.
const HybridKernel *const *UsableHybridKernels();

// The usable kernel of that name, or null.
const HybridKernel *FindHybridKernel(const char *name);

// The kernel named by the environment variable HYMEDIAN_KERNEL if it is usable, otherwise the fastest one.
const HybridKernel *SelectHybridKernel();
