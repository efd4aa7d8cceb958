// The approximate square roots with which medians measure distance. q is a squared distance, never negative.
//
// The reciprocal estimate is the well-known one: a seed from half the bit pattern, then one Newton step.
#pragma once

#include <bit>
#include <cstdint>

inline float SquaredDistance(float a1, float b1, float c1, float a2, float b2, float c2) {
    const float a = a1 - a2;
    const float b = b1 - b2;
    const float c = c1 - c2;
    return (a * a + b * b) + c * c;
}

inline uint32_t ReciprocalRootSeed(float q) {
    return 0x5F3759DFu - static_cast<uint32_t>(std::bit_cast<int32_t>(q) >> 1);
}

// The distance, given its square and the seed; 0 for 0.
inline float DistanceFromSeed(float q, uint32_t seed) {
    const float y = std::bit_cast<float>(seed);
    const float t = ((q * 0.5f) * y) * y;
    return ((1.5f - t) * y) * q;
}

// Halves the exponent, rounding down, and looks up the top seven bits of the mantissa, in the upper half of
// the table when the exponent is odd.
inline float TableDistance(float q, const uint32_t *table) {
    if (q == 0) {
        return 0;
    }
    const uint32_t bits = std::bit_cast<uint32_t>(q);
    const int32_t exponent = static_cast<int32_t>(bits >> 23) - 127;
    uint32_t mantissa = bits & 0x7FFFFF;
    if ((exponent & 1) != 0) {
        mantissa |= 0x800000;
    }
    const auto halved = static_cast<uint32_t>((exponent >> 1) + 127);
    return std::bit_cast<float>((table[mantissa >> 16] << 16) | (halved << 23));
}
