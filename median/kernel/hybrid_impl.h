// The hybrid vector median filter for one instruction set. Before including this, define HYBRID_VARIANT (a
// namespace of its own: nothing compiled for this instruction set may be shared with other files),
// HYBRID_LANES (pixels per vector) and HYBRID_REGISTERS (vector registers).
//
// Compile with -ffp-contract=off, and with -fno-tree-ter: that pass would collect each sum's additions in one
// place, and the distances waiting for them would fill the registers.
#pragma once

#include "choice.h"
#include "hybrid_kernel.h"
#include "kept_distances.h"
#include "lines.h"
#include "medians.h"

namespace HYBRID_VARIANT {

// The stages of an output line, in order. Lines before the first output line go through the first two only.
enum class Stage { reading, distances, medians, choice, writing };

// Called after each stage; benchmarks supply their own.
struct NoObserver {
    void operator()(Stage) {}
};

template <class Format, int R, class Observer>
void FilterTile(const HybridBlock &block, int firstColumn, int pixels, Tile<Format, R> &tile,
                Observer &done) {
    Rings<Format, R> rings(tile, pixels);
    for (int line = -2 * R; line < block.lineCount; ++line) {
        rings.Advance();
        ReadLine(block.source[line + 2 * R], block.width, firstColumn, rings, tile);
        done(Stage::reading);
        ComputeDistances(rings, line < 0 ? -line : 0);
        done(Stage::distances);
        if (line < 0) {
            continue;
        }
        ComputeMedians(rings, tile);
        done(Stage::medians);
        ChoosePixels(rings, tile);
        done(Stage::choice);
        WriteLine(rings, tile, firstColumn, pixels, block.target[line]);
        done(Stage::writing);
    }
}

template <class Format, int R>
void FilterBlock(const HybridBlock &block) {
    auto &tile = *static_cast<Tile<Format, R> *>(block.scratch);
    NoObserver none;
    for (int column = block.firstColumn; column < block.lastColumn; column += kTilePixels[R - 1]) {
        const int rest = block.lastColumn - column;
        FilterTile(block, column, rest < kTilePixels[R - 1] ? rest : kTilePixels[R - 1], tile, none);
    }
}

struct Entry {
    std::size_t scratchBytes;
    void (*filter)(const HybridBlock &block);
};

template <class Format, int... R>
Entry FindEntry(int radius, std::integer_sequence<int, R...>) {
    static constexpr Entry kEntries[] = {{sizeof(Tile<Format, R + 1>), FilterBlock<Format, R + 1>}...};
    return kEntries[radius - 1];
}

inline Entry FindEntry(PixelFormat format, int radius) {
    constexpr std::make_integer_sequence<int, kMaxRadius> kRadii;
    switch (format) {
        case PixelFormat::gray8:
            return FindEntry<Gray<std::uint8_t>>(radius, kRadii);
        case PixelFormat::gray16:
            return FindEntry<Gray<std::uint16_t>>(radius, kRadii);
        case PixelFormat::rgb8:
            return FindEntry<Rgb8>(radius, kRadii);
        case PixelFormat::rgb16:
            return FindEntry<Rgb16<>>(radius, kRadii);
        case PixelFormat::gray16Full:
            return FindEntry<Gray<std::uint16_t, Halved>>(radius, kRadii);
        case PixelFormat::rgb16Full:
            return FindEntry<Rgb16<Halved>>(radius, kRadii);
        case PixelFormat::gray16Tagged:
            return FindEntry<Gray16Tagged>(radius, kRadii);
        case PixelFormat::rgb16Tagged:
            break;
    }
    return FindEntry<Rgb16Tagged>(radius, kRadii);
}

inline std::size_t ScratchBytes(PixelFormat format, int radius) {
    return FindEntry(format, radius).scratchBytes;
}

inline void Filter(const HybridBlock &block) {
    FindEntry(block.format, block.radius).filter(block);
}

}  // namespace HYBRID_VARIANT
