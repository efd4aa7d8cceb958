#include "median/plain/table_median.h"

#include "median/plain/smallest_sum.h"
#include "median/plain/square_root.h"

namespace {

constexpr int kBlock = 4;

// One Newton step, with the last product in double precision.
float BlockDistance(float q, uint32_t seed) {
    const float y = std::bit_cast<float>(seed);
    const float t = y * ((q * 0.5f) * y);
    const auto g = static_cast<float>(double{y} * (1.5 - double{t}));
    return g * q;
}

}  // namespace

void build_table(uint32_t *table) {
    for (uint32_t k = 0; k < kSquareRootTableSize; ++k) {
        table[k] = k & 127;
    }
}

int32_t returnMedian(int32_t count, const float *a, const float *b, const float *c, const uint32_t *table) {
    if (count > kMaxTableMedianSamples) {
        return 0;
    }
    float sums[kMaxTableMedianSamples] = {};
    float scratch[kBlock] = {};
    const auto squaredDistance = [=](int32_t i, int32_t j) {
        return SquaredDistance(a[i], b[i], c[i], a[j], b[j], c[j]);
    };
    for (int32_t i = 0; i < count - 1; ++i) {
        // The seeds come from what earlier rounds of i left, not from the block's own squared distances.
        uint32_t seeds[kBlock];
        for (int lane = 0; lane < kBlock; ++lane) {
            seeds[lane] = ReciprocalRootSeed(scratch[lane]);
        }
        int32_t j = i + 1;
        for (; j < count - 3; j += kBlock) {
            for (int lane = 0; lane < kBlock; ++lane) {
                scratch[lane] = squaredDistance(i, j + lane);
                const float d = BlockDistance(scratch[lane], seeds[lane]);
                sums[i] += d;
                sums[j + lane] += d;
            }
        }
        for (; j < count; ++j) {
            const float d = TableDistance(squaredDistance(i, j), table);
            scratch[kBlock - 1] = d;
            sums[i] += d;
            sums[j] += d;
        }
    }
    return SmallestSum(sums, count);
}
