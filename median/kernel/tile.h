// The filter's working memory. A block is filtered in tiles of columns, line by line.
//
// A tile's pixels are dealt to the lanes in runs: column c of lane l is pixel l * run + c. Every displacement
// is thus a whole number of vectors, and every load is aligned. What lies beyond a lane's run is the start of
// its neighbour's, one lane rotation away; only the last lane needs pixels from beyond the tile.
#pragma once

#include "geometry.h"
#include "hybrid_kernel.h"
#include "pixels.h"
#include "simd.h"

namespace HYBRID_VARIANT {

// Small enough for the distances to stay in a second-level cache, yet large enough that the margins, which
// are equally wide for any run, do not outweigh the gain from wider vectors. Up to radius 3, a run and its
// margins fill whole squares.
constexpr int kTilePixels[kMaxRadius] = {480, 448, 416, 128, 128, kLanes == 16 ? 192 : 128};

// The largest number of successive pixels that a lane takes.
template <int R>
constexpr int kMaxRun = kTilePixels[R - 1] / kLanes;

template <int R>
constexpr int kDistanceColumns = kPlan<R>.BinColumn(kPlan<R>.bins, kMaxRun<R>);

// Rounds up to whole squares, in which lines are dealt to the lanes and collected again.
constexpr int WholeSquares(int columns) {
    return (columns + kLanes - 1) / kLanes * kLanes;
}

// Pixels have a margin of R columns on both sides.
template <int R>
constexpr int kPixelColumns = WholeSquares(kMaxRun<R> + 2 * R);
template <int R>
constexpr int kOutputColumns = WholeSquares(kMaxRun<R>);

// The pixels around a tile's end in image order, starting R pixels inside it, so that whole vectors can be
// loaded from any of the first 2 * R.
template <int R>
constexpr int kTailPixels = WholeSquares(2 * R) + kLanes;

// A tile's pixels in image order, from R before the first to the end of the tail.
template <int R>
constexpr int kLinePixels = kMaxRun<R> *kLanes + kTailPixels<R>;

template <class Format, int R>
struct alignas(kHybridScratchAlignment) Tile {
    Float distances[kRingLines<R>][kDistanceColumns<R>];
    PointLine<Format, kPixelColumns<R>> points[kRingLines<R>];
    TailLine<Format, kTailPixels<R>> tails[kRingLines<R>];
    PackedLine<Format::kWords, kPixelColumns<R>> pixels[kRingLines<R>];
    PackedLine<Format::kWords, kMaxRun<R>> medians[kSets<R>];
    PackedLine<Format::kWords, kOutputColumns<R>> chosen;
    std::int32_t line[Format::kWords][kLinePixels<R>];
};

// A tile in use: the length of its runs, and the position of its rings for the current output line. The pixel
// lines are those from R above that line to R below it.
template <class Format, int R>
struct Rings {
    int run;
    Float *distances[kRingLines<R>];
    PointLine<Format, kPixelColumns<R>> *points[kRingLines<R>];
    TailLine<Format, kTailPixels<R>> *tails[kRingLines<R>];
    PackedLine<Format::kWords, kPixelColumns<R>> *pixels[kRingLines<R>];

    Rings(Tile<Format, R> &tile, int width) : run((width + kLanes - 1) / kLanes) {
        for (int i = 0; i < kRingLines<R>; ++i) {
            distances[i] = tile.distances[i];
            points[i] = &tile.points[i];
            tails[i] = &tile.tails[i];
            pixels[i] = &tile.pixels[i];
        }
    }

    void Advance() {
        Rotate(distances);
        Rotate(points);
        Rotate(tails);
        Rotate(pixels);
    }

  private:
    template <typename T>
    static void Rotate(T *(&ring)[kRingLines<R>]) {
        T *const first = ring[0];
        for (int i = 1; i < kRingLines<R>; ++i) {
            ring[i - 1] = ring[i];
        }
        ring[kRingLines<R> - 1] = first;
    }
};

}  // namespace HYBRID_VARIANT
