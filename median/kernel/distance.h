// Distances from squared distances. Every operation is rounded to single precision, in exactly this order.
#pragma once

#include "simd.h"

namespace HYBRID_VARIANT {

// Twice the distance ((1.5 - ((q * 0.5) * y) * y) * y) * q, where y estimates 1 / sqrt(q). Doubling is exact
// and saves a multiplication, and the medians only compare sums of such distances.
inline Float DoubledDistance(Float q) {
    const Float y = FromBits(0x5F3759DF - (Bits(q) >> 1));
    return ((3.0f - (q * y) * y) * y) * q;
}

// The square root of q by table: half the exponent, and the top seven bits of the mantissa.
inline Float TableDistance(Float q) {
    const Int bits = Bits(q);
    const Int exponent = ((bits >> 1) + (127 << 22)) & 0x7F800000;
    const Int root = exponent | (bits & 0x007F0000);
    return FromBits(q == 0.0f ? Int{} : root);
}

}  // namespace HYBRID_VARIANT
