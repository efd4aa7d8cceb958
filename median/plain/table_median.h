// The vector median of a few colour samples, with square roots from a table.
#pragma once

#include <cstdint>

constexpr int32_t kSquareRootTableSize = 256;
constexpr int32_t kMaxTableMedianSamples = 256;

// Fills entry k with k & 127.
void build_table(uint32_t *table);

// The index of the sample with the smallest sum of distances to all the others; the lowest if several tie.
// Samples are points (a[i], b[i], c[i]). Returns 0 when count is below 2 or above kMaxTableMedianSamples.
//
// Distances are approximate, and the approximation affects which sample wins: with five samples or more,
// pairs in blocks of four use a reciprocal-square-root estimate seeded by an earlier block; the rest use the
// table, which keeps the top seven bits of the mantissa.
int32_t returnMedian(int32_t count, const float *a, const float *b, const float *c, const uint32_t *table);
