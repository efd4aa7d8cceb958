// The vector median of up to 25 colour samples, using a schedule of pairs that is kept between calls.
#pragma once

#include <cstdint>

constexpr int32_t kMaxScheduledSamples = 25;

// The index of the sample with the smallest sum of distances to all the others; the lowest if several tie.
// Samples are points (a[i], b[i], c[i]). Returns 0 when count is below 2 or above 25. Not thread-safe.
int32_t returnMedianScheduling(int32_t count, const float *a, const float *b, const float *c);
