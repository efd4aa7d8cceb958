// A candidate for a median: a pixel and the sum of its distances.
#pragma once

#include "pixels.h"

namespace HYBRID_VARIANT {

template <std::size_t Words>
struct Candidate {
    Float sum;
    Packed<Words> pixel;
};

// The later candidate wins only if its sum is strictly smaller.
template <std::size_t Words>
inline Candidate<Words> Better(const Candidate<Words> &earlier, const Candidate<Words> &later) {
    const Int takesOver = Less(later.sum, earlier.sum);
    Candidate<Words> better;
    better.sum = Select(takesOver, later.sum, earlier.sum);
    for (std::size_t i = 0; i < Words; ++i) {
        better.pixel.word[i] = Select(takesOver, later.pixel.word[i], earlier.pixel.word[i]);
    }
    return better;
}

}  // namespace HYBRID_VARIANT
