// Reads lines of samples into a tile and writes them out of it.
#pragma once

#include <cstddef>

#include "tile.h"

namespace HYBRID_VARIANT {

// Reads `count` pixels starting at column `first`; beyond the image its outermost columns repeat.
template <class Format>
void ReadPixels(const void *source, int width, int first, int count, std::int32_t *const *words) {
    const auto *samples = static_cast<const typename Format::Sample *>(source);
    const int begin = first < 0 ? -first : 0;
    const int end = width - first < count ? width - first : count;
    for (int i = begin; i < end; ++i) {
        Format::Read(samples + std::ptrdiff_t{first + i} * Format::kSamplesPerPixel, words, i);
    }
    for (std::size_t word = 0; word < Format::kWords; ++word) {
        for (int i = 0; i < begin; ++i) {
            words[word][i] = words[word][begin];
        }
        for (int i = end; i < count; ++i) {
            words[word][i] = words[word][end - 1];
        }
    }
}

// Distributes pixels in image order to columns of lanes.
inline void Deal(const std::int32_t *line, int run, int columns, Int *dealt) {
    for (int x = 0; x < columns; x += kLanes) {
        Int square[kLanes];
        for (std::ptrdiff_t lane = 0; lane < kLanes; ++lane) {
            square[lane] = Load(line + lane * run + x);
        }
        Transpose(square);
        for (int column = 0; column < kLanes; ++column) {
            dealt[x + column] = square[column];
        }
    }
}

// The inverse. Squares extend past their own run into the next one, so it goes from right to left and lane by
// lane: later stores overwrite what spilled over.
inline void Collect(const Int *dealt, int run, std::int32_t *line) {
    for (int x = WholeSquares(run) - kLanes; x >= 0; x -= kLanes) {
        Int square[kLanes];
        for (int column = 0; column < kLanes; ++column) {
            square[column] = dealt[x + column];
        }
        Transpose(square);
        for (std::ptrdiff_t lane = 0; lane < kLanes; ++lane) {
            Store(line + lane * run + x, square[lane]);
        }
    }
}

// Reads a source line into the rings' last line.
template <class Format, int R>
void ReadLine(const void *source, int width, int firstColumn, const Rings<Format, R> &rings,
              Tile<Format, R> &tile) {
    std::int32_t *line[Format::kWords];
    auto &pixels = *rings.pixels[2 * R];
    auto &points = *rings.points[2 * R];
    auto &tail = *rings.tails[2 * R];
    for (std::size_t i = 0; i < Format::kWords; ++i) {
        line[i] = tile.line[i];
    }
    const int tailBegin = rings.run * kLanes;
    ReadPixels<Format>(source, width, firstColumn - R, tailBegin + kTailPixels<R>, line);

    const int columns = rings.run + 2 * R;
    for (std::size_t i = 0; i < Format::kWords; ++i) {
        Deal(line[i], rings.run, columns, pixels[i]);
    }
    for (int x = 0; x < columns; ++x) {
        const auto point = Format::Unpack(LoadPacked(pixels, x));
        for (std::size_t i = 0; i < Format::kComponents; ++i) {
            points[i][x] = point.component[i];
        }
    }
    for (int x = 0; x < kTailPixels<R>; x += kLanes) {
        Packed<Format::kWords> packed;
        for (std::size_t i = 0; i < Format::kWords; ++i) {
            packed.word[i] = Load(line[i] + tailBegin + x);
        }
        const auto point = Format::Unpack(packed);
        for (std::size_t i = 0; i < Format::kComponents; ++i) {
            Store(&tail[i][x], point.component[i]);
        }
    }
}

template <class Format, int R>
void WriteLine(const Rings<Format, R> &rings, Tile<Format, R> &tile, int firstColumn, int pixels,
               void *target) {
    const std::int32_t *line[Format::kWords];
    for (std::size_t i = 0; i < Format::kWords; ++i) {
        Collect(tile.chosen[i], rings.run, tile.line[i]);
        line[i] = tile.line[i];
    }
    auto *samples = static_cast<typename Format::Sample *>(target) +
                    std::ptrdiff_t{firstColumn} * Format::kSamplesPerPixel;
    for (int i = 0; i < pixels; ++i) {
        Format::Write(line, i, samples + std::ptrdiff_t{i} * Format::kSamplesPerPixel);
    }
}

}  // namespace HYBRID_VARIANT
