// The hybrid vector median filter for one instruction set. Before including this, define HYBRID_VARIANT (a
// namespace of its own: nothing compiled for this instruction set may be shared with other files),
// HYBRID_LANES (pixels per vector) and HYBRID_REGISTERS (vector registers).
//
// A block is filtered in tiles of columns, line by line. The distance between two pixels depends on nothing
// else, and every set of samples meets the same displacements at many places, so each displacement's
// distances are computed once per line and kept as long as some set still needs them.
//
// Compile with -ffp-contract=off, and with -fno-tree-ter: that pass would collect each sum's additions in one
// place, and the distances waiting for them would fill the registers.
#pragma once

#include "distance.h"
#include "geometry.h"
#include "hybrid_kernel.h"
#include "pixels.h"
#include "simd.h"

namespace HYBRID_VARIANT {

// Columns of a tile: as many as let the kept distances stay in a second-level cache.
template <int R>
constexpr int kTileColumns = R <= 2   ? 512
                             : R == 3 ? 384
                             : R == 4 ? 192
                             : R == 5 ? 96
                                      : 128;

// Distances are kept for a few columns more on both sides; pixels for as many again as a displacement spans.
constexpr int kDistanceMargin = 8;
constexpr int kPixelMargin = 16;
static_assert(kMaxRadius <= kDistanceMargin && 2 * kMaxRadius <= kPixelMargin);

template <int R>
constexpr int kDistanceColumns = kTileColumns<R> + 2 * kDistanceMargin;
template <int R>
constexpr int kPixelColumns = kDistanceColumns<R> + 2 * kPixelMargin;

// An odd number of cache lines, so that a median's distances spread over all sets of the first-level cache.
static_assert(kDistanceColumns<3> / 16 % 2 == 1 && kDistanceColumns<6> / 16 % 2 == 1);

template <class Format, int R>
struct alignas(kHybridScratchAlignment) Tile {
    float distances[kRingLines<R>][kPlan<R>.bins][kDistanceColumns<R>];
    typename Format::Component components[kRingLines<R>][Format::kComponents][kPixelColumns<R>];
    std::int32_t words[kRingLines<R>][Format::kWords][kPixelColumns<R>];
    std::int32_t medians[kSets<R>][Format::kWords][kTileColumns<R>];
    std::int32_t chosen[Format::kWords][kTileColumns<R>];
};

// Where the rings stand for the current output line. The pixel lines are those from R above it to R below.
template <class Format, int R>
struct Rings {
    float *distances[kRingLines<R>];
    typename Format::Component *components[kRingLines<R>];
    std::int32_t *words[kRingLines<R>];

    explicit Rings(Tile<Format, R> &tile) {
        for (int i = 0; i < kRingLines<R>; ++i) {
            distances[i] = tile.distances[i][0];
            components[i] = tile.components[i][0];
            words[i] = tile.words[i][0];
        }
    }

    void Advance() {
        Rotate(distances);
        Rotate(components);
        Rotate(words);
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

template <class Format>
inline auto LoadPoint(const typename Format::Component *plane, std::size_t planeStride) {
    Point<decltype(Load(plane)), Format::kComponents> point;
    for (std::size_t i = 0; i < Format::kComponents; ++i) {
        point.component[i] = Load(plane + i * planeStride);
    }
    return point;
}

template <std::size_t Words>
inline Packed<Words> LoadPacked(const std::int32_t *plane, std::size_t planeStride) {
    Packed<Words> packed;
    for (std::size_t i = 0; i < Words; ++i) {
        packed.word[i] = Load(plane + i * planeStride);
    }
    return packed;
}

template <std::size_t Words>
inline void StorePacked(const Packed<Words> &packed, std::int32_t *plane, std::size_t planeStride) {
    for (std::size_t i = 0; i < Words; ++i) {
        Store(plane + i * planeStride, packed.word[i]);
    }
}

// A pixel and the sum of its distances.
template <std::size_t Words>
struct Candidate {
    Float sum;
    Packed<Words> pixel;
};

// The later candidate takes over only where its sum is strictly smaller.
template <std::size_t Words>
inline Candidate<Words> Better(const Candidate<Words> &earlier, const Candidate<Words> &later) {
    const Int takesOver = later.sum < earlier.sum;
    Candidate<Words> better;
    better.sum = takesOver ? later.sum : earlier.sum;
    for (std::size_t i = 0; i < Words; ++i) {
        better.pixel.word[i] = takesOver ? later.pixel.word[i] : earlier.pixel.word[i];
    }
    return better;
}

// Reads a source line into the ring's last line, repeating the image's outermost columns.
template <class Format, int R>
void ReadLine(const void *source, int width, int firstColumn, std::int32_t *words,
              typename Format::Component *components) {
    constexpr int kColumns = kPixelColumns<R>;
    const auto *samples = static_cast<const typename Format::Sample *>(source);
    std::int32_t *planes[Format::kWords];
    for (std::size_t i = 0; i < Format::kWords; ++i) {
        planes[i] = words + i * kColumns;
    }

    const int origin = firstColumn - kDistanceMargin - kPixelMargin;
    const int inside = origin < 0 ? -origin : 0;
    const int end = width - origin < kColumns ? width - origin : kColumns;
    for (int i = inside; i < end; ++i) {
        Format::Read(samples + std::ptrdiff_t{origin + i} * Format::kSamplesPerPixel, planes, i);
    }
    for (std::int32_t *plane : planes) {
        for (int i = 0; i < inside; ++i) {
            plane[i] = plane[inside];
        }
        for (int i = end; i < kColumns; ++i) {
            plane[i] = plane[end - 1];
        }
    }
    for (int i = 0; i < kColumns; i += kLanes) {
        const auto point = Format::Unpack(LoadPacked<Format::kWords>(words + i, kColumns));
        for (std::size_t c = 0; c < Format::kComponents; ++c) {
            Store(components + c * kColumns + i, point.component[c]);
        }
    }
}

// Computes a line of distances for the displacements that are kept longer than for `ahead` more output lines.
template <class Format, int R>
void ComputeDistances(const Rings<Format, R> &rings, int ahead, int columns) {
    constexpr int kStride = kPixelColumns<R>;
    constexpr const Plan<R> &plan = kPlan<R>;
    struct Job {
        const typename Format::Component *other;
        float *distances;
    };
    for (int first = 0, next; first < plan.count; first = next) {
        const int line = plan.displacements[first].lastLine;
        Job jobs[kMaxDisplacements];
        int count = 0;
        for (next = first; next < plan.count && plan.displacements[next].lastLine == line; ++next) {
            const Displacement &d = plan.displacements[next];
            if (d.Lines() <= ahead) {
                continue;
            }
            jobs[count++] = {rings.components[R + line - d.offset.dy] + kPixelMargin - d.offset.dx,
                             rings.distances[plan.RingLine(next, line)] + d.bin * kDistanceColumns<R>};
        }
        const auto *anchors = rings.components[R + line] + kPixelMargin;
        for (int x = 0; x < columns + 2 * kDistanceMargin; x += kLanes) {
            const auto anchor = LoadPoint<Format>(anchors + x, kStride);
            for (int i = 0; i < count; ++i) {
                const auto other = LoadPoint<Format>(jobs[i].other + x, kStride);
                Store(jobs[i].distances + x, DoubledDistance(Format::SquaredDistance(anchor, other)));
            }
        }
    }
}

// A set's sums that fit the registers, computed from the kept distances, for samples First..Last - 1.
template <int R, int Set, int First, int Last>
struct SumGroup {
    static constexpr std::size_t kSums = Last - First;
    Float sum[kSums];

    static constexpr bool Has(int sample) { return First <= sample && sample < Last; }

    template <int Sample, bool IsFirstPartner>
    [[gnu::always_inline]] void Add(Float distance) {
        if constexpr (Has(Sample)) {
            if constexpr (IsFirstPartner) {
                sum[Sample - First] = distance;
            } else {
                sum[Sample - First] += distance;
            }
        }
    }

    template <int K>
    [[gnu::always_inline]] void AddTerm(const float *const *rings, int x) {
        constexpr Term term = kTerms<R, Set>.at[K];
        if constexpr (Has(term.i) || Has(term.j)) {
            const Float distance =
                Load(rings[term.ringLine] + x + term.bin * kDistanceColumns<R> + kDistanceMargin + term.dx);
            Add<term.i, term.i == 0 && term.j == 1>(distance);
            Add<term.j, term.i == 0>(distance);
        }
    }

    template <int... K>
    [[gnu::always_inline]] void AddTerms(const float *const *rings, int x, std::integer_sequence<int, K...>) {
        (AddTerm<K>(rings, x), ...);
    }

    // The best of Count samples from sample From on. A tournament keeps the order's rule and waits less.
    template <std::size_t Words, int From, int Count>
    [[gnu::always_inline]] Candidate<Words> Best(const std::int32_t *const *words, int x) const {
        if constexpr (Count == 1) {
            constexpr Offset offset = kSampleSet<R, Set>.at[From];
            const std::int32_t *word = words[R + offset.dy] + x + kDistanceMargin + kPixelMargin + offset.dx;
            return {sum[From - First], LoadPacked<Words>(word, kPixelColumns<R>)};
        } else {
            const Candidate<Words> earlier = Best<Words, From, Count / 2>(words, x);
            return Better(earlier, Best<Words, From + Count / 2, Count - Count / 2>(words, x));
        }
    }
};

template <std::size_t Words, int R, int Set, int First, int Last>
[[gnu::always_inline]] inline Candidate<Words> BestOfGroup(const float *const *distances,
                                                           const std::int32_t *const *words, int x) {
    SumGroup<R, Set, First, Last> group;
    group.AddTerms(distances, x, std::make_integer_sequence<int, kPairs<R>>{});
    return group.template Best<Words, First, Last - First>(words, x);
}

template <std::size_t Words, int R, int Set, int First = 0>
[[gnu::always_inline]] inline Candidate<Words> BestOfSet(const float *const *distances,
                                                         const std::int32_t *const *words, int x) {
    constexpr int kMaxSums = HYBRID_REGISTERS - 3;
    constexpr int kGroups = (kSamples<R> + kMaxSums - 1) / kMaxSums;
    constexpr int kNext = First + (kSamples<R> + kGroups - 1) / kGroups;
    if constexpr (kNext >= kSamples<R>) {
        return BestOfGroup<Words, R, Set, First, kSamples<R>>(distances, words, x);
    } else {
        const auto earlier = BestOfGroup<Words, R, Set, First, kNext>(distances, words, x);
        return Better(earlier, BestOfSet<Words, R, Set, kNext>(distances, words, x));
    }
}

// The median of one set for each column.
template <std::size_t Words, int R, int Set>
void ComputeMedians(const float *const *distances, const std::int32_t *const *words, int columns,
                    std::int32_t *medians) {
    for (int x = 0; x < columns; x += kLanes) {
        StorePacked(BestOfSet<Words, R, Set>(distances, words, x).pixel, medians + x, kTileColumns<R>);
    }
}

template <class Format, int R, int... Set>
void ComputeAllMedians(const Rings<Format, R> &rings, int columns, Tile<Format, R> &tile,
                       std::integer_sequence<int, Set...>) {
    (ComputeMedians<Format::kWords, R, Set>(rings.distances, rings.words, columns, tile.medians[Set][0]),
     ...);
}

// The median of the two medians and the centre, by table distance.
template <class Format>
inline Packed<Format::kWords> ChooseOfThree(const Packed<Format::kWords> (&candidate)[3]) {
    const auto p0 = Format::Unpack(candidate[0]);
    const auto p1 = Format::Unpack(candidate[1]);
    const auto p2 = Format::Unpack(candidate[2]);
    const Float d01 = TableDistance(Format::SquaredDistance(p0, p1));
    const Float d02 = TableDistance(Format::SquaredDistance(p0, p2));
    const Float d12 = TableDistance(Format::SquaredDistance(p1, p2));
    const Candidate<Format::kWords> first = {d01 + d02, candidate[0]};
    const Candidate<Format::kWords> second = {d01 + d12, candidate[1]};
    const Candidate<Format::kWords> third = {d02 + d12, candidate[2]};
    return Better(Better(first, second), third).pixel;
}

// The median of the four medians and the centre taken three times. The second and third centre have the
// first one's sum and so never take over, and are at no distance from it.
template <class Format>
inline Packed<Format::kWords> ChooseOfSeven(const Packed<Format::kWords> (&candidate)[5]) {
    constexpr int kCentre = 4;
    decltype(Format::Unpack(candidate[0])) point[5];
    for (int i = 0; i <= kCentre; ++i) {
        point[i] = Format::Unpack(candidate[i]);
    }
    Float sum[5] = {};
    for (int i = 0; i < kCentre; ++i) {
        for (int j = i + 1; j < kCentre; ++j) {
            const Float d = DoubledDistance(Format::SquaredDistance(point[i], point[j]));
            sum[i] += d;
            sum[j] += d;
        }
        const Float d = DoubledDistance(Format::SquaredDistance(point[i], point[kCentre]));
        sum[i] = sum[i] + d + d + d;
        sum[kCentre] += d;
    }
    Candidate<Format::kWords> best = {sum[0], candidate[0]};
    for (int i = 1; i <= kCentre; ++i) {
        best = Better<Format::kWords>(best, {sum[i], candidate[i]});
    }
    return best.pixel;
}

template <class Format, int R>
void ChoosePixels(const Rings<Format, R> &rings, int columns, Tile<Format, R> &tile) {
    const std::int32_t *centre = rings.words[R] + kDistanceMargin + kPixelMargin;
    for (int x = 0; x < columns; x += kLanes) {
        Packed<Format::kWords> candidate[kSets<R> + 1];
        for (int set = 0; set < kSets<R>; ++set) {
            candidate[set] = LoadPacked<Format::kWords>(tile.medians[set][0] + x, kTileColumns<R>);
        }
        candidate[kSets<R>] = LoadPacked<Format::kWords>(centre + x, kPixelColumns<R>);
        if constexpr (R == 1) {
            StorePacked(ChooseOfThree<Format>(candidate), tile.chosen[0] + x, kTileColumns<R>);
        } else {
            StorePacked(ChooseOfSeven<Format>(candidate), tile.chosen[0] + x, kTileColumns<R>);
        }
    }
}

template <class Format, int R>
void WriteLine(const Tile<Format, R> &tile, int firstColumn, int columns, void *target) {
    const std::int32_t *planes[Format::kWords];
    for (std::size_t i = 0; i < Format::kWords; ++i) {
        planes[i] = tile.chosen[i];
    }
    auto *samples = static_cast<typename Format::Sample *>(target);
    for (int i = 0; i < columns; ++i) {
        Format::Write(planes, i, samples + std::ptrdiff_t{firstColumn + i} * Format::kSamplesPerPixel);
    }
}

template <class Format, int R>
void FilterTile(const HybridBlock &block, int firstColumn, int columns, Tile<Format, R> &tile) {
    Rings<Format, R> rings(tile);
    for (int line = -2 * R; line < block.lineCount; ++line) {
        rings.Advance();
        ReadLine<Format, R>(block.source[line + 2 * R], block.width, firstColumn, rings.words[2 * R],
                            rings.components[2 * R]);
        ComputeDistances(rings, line < 0 ? -line : 0, columns);
        if (line < 0) {
            continue;
        }
        ComputeAllMedians(rings, columns, tile, std::make_integer_sequence<int, kSets<R>>{});
        ChoosePixels(rings, columns, tile);
        WriteLine(tile, firstColumn, columns, block.target[line]);
    }
}

template <class Format, int R>
void FilterBlock(const HybridBlock &block) {
    auto &tile = *static_cast<Tile<Format, R> *>(block.scratch);
    for (int column = block.firstColumn; column < block.lastColumn; column += kTileColumns<R>) {
        const int rest = block.lastColumn - column;
        FilterTile(block, column, rest < kTileColumns<R> ? rest : kTileColumns<R>, tile);
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
        case PixelFormat::kGray8:
            return FindEntry<Gray<std::uint8_t>>(radius, kRadii);
        case PixelFormat::kGray16:
            return FindEntry<Gray<std::uint16_t>>(radius, kRadii);
        case PixelFormat::kRgb8:
            return FindEntry<Rgb8>(radius, kRadii);
        case PixelFormat::kRgb16:
            break;
    }
    return FindEntry<Rgb16>(radius, kRadii);
}

inline std::size_t ScratchBytes(PixelFormat format, int radius) {
    return FindEntry(format, radius).scratchBytes;
}

inline void Filter(const HybridBlock &block) {
    FindEntry(block.format, block.radius).filter(block);
}

}  // namespace HYBRID_VARIANT
