// Owns the schedule: the list of sample pairs, rebuilt only when the number of samples changes. Each call
// makes three passes over that list.
#include "median/plain/scheduled_median.h"

#include "median/plain/smallest_sum.h"
#include "median/plain/square_root.h"

namespace {

constexpr int32_t kMaxPairs = kMaxScheduledSamples * (kMaxScheduledSamples - 1) / 2;

struct SamplePair {
    int32_t i, j;
};

int32_t schedulecount = 0;
SamplePair scheduleptr[kMaxPairs];
float schedulesumsquares[kMaxPairs];
uint32_t schedulesqrtseed[kMaxPairs];

// Every pair i < j, with i in the outer loop: the order of the additions determines how the sums round.
void BuildSchedule(int32_t count) {
    int32_t k = 0;
    for (int32_t i = 0; i < count - 1; ++i) {
        for (int32_t j = i + 1; j < count; ++j) {
            scheduleptr[k++] = {i, j};
        }
    }
    schedulecount = k;
}

}  // namespace

int32_t returnMedianScheduling(int32_t count, const float *a, const float *b, const float *c) {
    if (count < 2 || count > kMaxScheduledSamples) {
        return 0;
    }
    const int32_t pairs = count * (count - 1) / 2;
    if (pairs != schedulecount) {
        BuildSchedule(count);
    }
    for (int32_t k = 0; k < pairs; ++k) {
        const auto [i, j] = scheduleptr[k];
        schedulesumsquares[k] = SquaredDistance(a[i], b[i], c[i], a[j], b[j], c[j]);
    }
    for (int32_t k = 0; k < pairs; ++k) {
        schedulesqrtseed[k] = ReciprocalRootSeed(schedulesumsquares[k]);
    }
    float sums[kMaxScheduledSamples] = {};
    for (int32_t k = 0; k < pairs; ++k) {
        const auto [i, j] = scheduleptr[k];
        const float d = DistanceFromSeed(schedulesumsquares[k], schedulesqrtseed[k]);
        sums[i] += d;
        sums[j] += d;
    }
    return SmallestSum(sums, count);
}
