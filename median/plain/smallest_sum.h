// Finds the sample with the smallest sum of distances; the lowest index if several tie. A NaN sum never wins.
#pragma once

#include <cstdint>

inline int32_t SmallestSum(const float *sums, int32_t count) {
    int32_t smallest = 0;
    for (int32_t k = 1; k < count; ++k) {
        if (sums[smallest] > sums[k]) {
            smallest = k;
        }
    }
    return smallest;
}
