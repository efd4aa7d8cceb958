// Distances from squared distances. All operations are single precision, each rounded, in this order.
#pragma once

#include "simd.h"

namespace HYBRID_VARIANT {

// Twice the distance ((1.5 - ((q * 0.5) * y) * y) * y) * q with y the estimate of 1 / sqrt(q). Doubling is
// exact, it saves a multiplication, and the medians compare only sums of such distances.
inline Float DoubledDistance(Float q) {
    const Float y = FromBits(0x5F3759DF - (Bits(q) >> 1));
    return ((3.0f - (q * y) * y) * y) * q;
}

// The square root of q by table: half the exponent, the leading seven bits of the mantissa.
inline Float TableDistance(Float q) {
    const Int bits = Bits(q);
    const Int exponent = ((bits >> 1) + (127 << 22)) & 0x7F800000;
    const Int root = exponent | (bits & 0x007F0000);
    return FromBits(q == 0.0f ? Int{} : root);
}

}  // namespace HYBRID_VARIANT
