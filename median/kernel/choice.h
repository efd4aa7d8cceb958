// The final choice: the median of the sets' medians and the centre pixel.
#pragma once

#include "candidate.h"
#include "distance.h"
#include "tile.h"

namespace HYBRID_VARIANT {

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

// The median of the four medians and the centre, counted three times. The second and third copies of the
// centre have the same sum as the first, so they never win, and their distance from it is zero.
template <class Format>
inline Packed<Format::kWords> ChooseOfSeven(const Packed<Format::kWords> (&candidate)[5]) {
    constexpr int kCentre = 4;
    decltype(Format::Unpack(candidate[0])) point[5];
#pragma GCC unroll 8
    for (int i = 0; i <= kCentre; ++i) {
        point[i] = Format::Unpack(candidate[i]);
    }
    Float sum[5] = {};
#pragma GCC unroll 8
    for (int i = 0; i < kCentre; ++i) {
#pragma GCC unroll 8
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
#pragma GCC unroll 8
    for (int i = 1; i <= kCentre; ++i) {
        best = Better<Format::kWords>(best, {sum[i], candidate[i]});
    }
    return best.pixel;
}

template <class Format, int R>
void ChoosePixels(const Rings<Format, R> &rings, Tile<Format, R> &tile) {
    for (int x = 0; x < rings.run; ++x) {
        Packed<Format::kWords> candidate[kSets<R> + 1];
        for (int set = 0; set < kSets<R>; ++set) {
            candidate[set] = LoadPacked(tile.medians[set], x);
        }
        candidate[kSets<R>] = LoadPacked(*rings.pixels[R], R + x);
        if constexpr (R == 1) {
            StorePacked(ChooseOfThree<Format>(candidate), tile.chosen, x);
        } else {
            StorePacked(ChooseOfSeven<Format>(candidate), tile.chosen, x);
        }
    }
}

}  // namespace HYBRID_VARIANT
