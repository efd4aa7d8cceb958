// The median of each set of samples: the one whose kept distances to all others have the smallest sum.
#pragma once

#include "candidate.h"
#include "tile.h"

namespace HYBRID_VARIANT {

// The input of one output line's medians; formats with equally many words share the code.
template <std::size_t Words, int R>
struct Neighbourhood {
    int run;
    const Float *const *distances;
    const PackedLine<Words, kPixelColumns<R>> *const *pixels;
};

// As many of a set's sums as fit in registers, for samples First..Last - 1.
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
    [[gnu::always_inline]] void AddTerm(const Float *const *rings, int x) {
        constexpr Term term = kTerms<R, Set, kMaxRun<R>>.at[K];
        if constexpr (Has(term.i) || Has(term.j)) {
            const Float distance = rings[term.ringLine][term.column + x];
            Add<term.i, term.i == 0 && term.j == 1>(distance);
            Add<term.j, term.i == 0>(distance);
        }
    }

    template <int... K>
    [[gnu::always_inline]] void AddTerms(const Float *const *rings, int x, std::integer_sequence<int, K...>) {
        (AddTerm<K>(rings, x), ...);
    }

    // The best of Count samples, starting with sample From. A tournament breaks ties as a linear scan would,
    // with a shorter dependency chain.
    template <std::size_t Words, int From, int Count>
    [[gnu::always_inline]] Candidate<Words> Best(const Neighbourhood<Words, R> &around, int x) const {
        if constexpr (Count == 1) {
            constexpr Offset offset = kSampleSet<R, Set>.at[From];
            return {sum[From - First], LoadPacked(*around.pixels[R + offset.dy], R + offset.dx + x)};
        } else {
            const Candidate<Words> earlier = Best<Words, From, Count / 2>(around, x);
            return Better(earlier, Best<Words, From + Count / 2, Count - Count / 2>(around, x));
        }
    }
};

template <std::size_t Words, int R, int Set, int First, int Last>
[[gnu::always_inline]] inline Candidate<Words> BestOfGroup(const Neighbourhood<Words, R> &around, int x) {
    SumGroup<R, Set, First, Last> group;
    group.AddTerms(around.distances, x, std::make_integer_sequence<int, kPairs<R>>{});
    return group.template Best<Words, First, Last - First>(around, x);
}

template <std::size_t Words, int R, int Set, int First = 0>
[[gnu::always_inline]] inline Candidate<Words> BestOfSet(const Neighbourhood<Words, R> &around, int x) {
    constexpr int kMaxSums = HYBRID_REGISTERS - 3;
    constexpr int kGroups = (kSamples<R> + kMaxSums - 1) / kMaxSums;
    constexpr int kNext = First + (kSamples<R> + kGroups - 1) / kGroups;
    if constexpr (kNext >= kSamples<R>) {
        return BestOfGroup<Words, R, Set, First, kSamples<R>>(around, x);
    } else {
        const auto earlier = BestOfGroup<Words, R, Set, First, kNext>(around, x);
        return Better(earlier, BestOfSet<Words, R, Set, kNext>(around, x));
    }
}

// The order of the columns. Where a vector is a whole cache line, columns are taken from both ends
// alternately: with evenly spaced loads the processor prefetches the next line too early, and it is evicted
// from the first-level cache before it is used.
constexpr int MedianColumn(int turn, int run) {
    constexpr int kCacheLine = 64;
    if (sizeof(Float) < kCacheLine) {
        return turn;
    }
    return turn % 2 == 0 ? turn / 2 : run - 1 - turn / 2;
}

// One set's median for each column.
template <std::size_t Words, int R, int Set>
void ComputeMedians(const Neighbourhood<Words, R> &around, PackedLine<Words, kMaxRun<R>> &medians) {
    for (int turn = 0; turn < around.run; ++turn) {
        const int x = MedianColumn(turn, around.run);
        StorePacked(BestOfSet<Words, R, Set>(around, x).pixel, medians, x);
    }
}

template <std::size_t Words, int R, int... Set>
void ComputeAllMedians(const Neighbourhood<Words, R> &around,
                       PackedLine<Words, kMaxRun<R>> (&medians)[kSets<R>],
                       std::integer_sequence<int, Set...>) {
    (ComputeMedians<Words, R, Set>(around, medians[Set]), ...);
}

template <class Format, int R>
void ComputeMedians(const Rings<Format, R> &rings, Tile<Format, R> &tile) {
    ComputeAllMedians<Format::kWords, R>({rings.run, rings.distances, rings.pixels}, tile.medians,
                                         std::make_integer_sequence<int, kSets<R>>{});
}

}  // namespace HYBRID_VARIANT
