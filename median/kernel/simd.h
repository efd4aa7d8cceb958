// Vectors of HYBRID_LANES pixels, in the compiler's own vector types; with a single lane they are plain
// numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>

#if defined(__SSE2__)
#include <immintrin.h>
#elif defined(__aarch64__)
#include <arm_neon.h>
#endif

namespace HYBRID_VARIANT {

constexpr int kLanes = HYBRID_LANES;

#if HYBRID_LANES == 1
using Float = float;
using Int = std::int32_t;
#else
typedef float Float __attribute__((vector_size(4 * kLanes)));
typedef std::int32_t Int __attribute__((vector_size(4 * kLanes)));
#endif
typedef std::int16_t Int16Pairs __attribute__((vector_size(4 * kLanes)));
typedef Float UnalignedFloat __attribute__((aligned(4), may_alias));
typedef Int UnalignedInt __attribute__((aligned(4), may_alias));

inline Float Load(const float *from) {
    return *reinterpret_cast<const UnalignedFloat *>(from);
}
inline Int Load(const std::int32_t *from) {
    return *reinterpret_cast<const UnalignedInt *>(from);
}
inline void Store(float *to, Float value) {
    *reinterpret_cast<UnalignedFloat *>(to) = value;
}
inline void Store(std::int32_t *to, Int value) {
    *reinterpret_cast<UnalignedInt *>(to) = value;
}

inline Int Bits(Float value) {
    return __builtin_bit_cast(Int, value);
}
inline Float FromBits(Int bits) {
    return __builtin_bit_cast(Float, bits);
}
inline Float ToFloat(Int value) {
#if HYBRID_LANES == 1
    return static_cast<Float>(value);
#else
    return __builtin_convertvector(value, Float);
#endif
}

// Each lane holds two 16-bit numbers: their differences, and the sum of their squares.
inline Int SubtractPairs(Int a, Int b) {
    return __builtin_bit_cast(Int, __builtin_bit_cast(Int16Pairs, a) - __builtin_bit_cast(Int16Pairs, b));
}

inline Int SumSquaresOfPairs(Int pairs) {
#if defined(__SSE2__) && HYBRID_LANES == 16
    const __m512i x = reinterpret_cast<__m512i>(pairs);
    return reinterpret_cast<Int>(_mm512_madd_epi16(x, x));
#elif defined(__SSE2__) && HYBRID_LANES == 8
    const __m256i x = reinterpret_cast<__m256i>(pairs);
    return reinterpret_cast<Int>(_mm256_madd_epi16(x, x));
#elif defined(__SSE2__) && HYBRID_LANES == 4
    const __m128i x = reinterpret_cast<__m128i>(pairs);
    return reinterpret_cast<Int>(_mm_madd_epi16(x, x));
#elif defined(__aarch64__) && HYBRID_LANES == 4
    const int16x8_t x = reinterpret_cast<int16x8_t>(pairs);
    return vpaddq_s32(vmull_s16(vget_low_s16(x), vget_low_s16(x)), vmull_high_s16(x, x));
#else
    const Int low = pairs << 16 >> 16;
    const Int high = pairs >> 16;
    return low * low + high * high;
#endif
}

// Less gives a mask per lane, all ones or all zeros, and Select chooses by it.
#if HYBRID_LANES == 1
inline Int Less(Float a, Float b) {
    return -static_cast<Int>(a < b);
}

// Branchless, because noise would make a branch unpredictable.
inline Int Select(Int mask, Int a, Int b) {
    return (a & mask) | (b & ~mask);
}
inline Float Select(Int mask, Float a, Float b) {
    return FromBits(Select(mask, Bits(a), Bits(b)));
}

inline Float NextLane(Float, float last) {
    return last;
}

inline void Transpose(Int (&)[1]) {}
#else
inline Int Less(Float a, Float b) {
    return a < b;
}

template <typename Vector>
inline Vector Select(Int mask, Vector a, Vector b) {
    return mask ? a : b;
}

using EveryLane = std::make_integer_sequence<int, kLanes>;

// Every lane takes its successor's value; the last lane takes `last`.
template <int... Lane>
inline Float NextLane(Float value, float last, std::integer_sequence<int, Lane...>) {
    const Float lasts = {(static_cast<void>(Lane), last)...};
    return __builtin_shufflevector(value, lasts, (Lane + 1)...);
}

inline Float NextLane(Float value, float last) {
    return NextLane(value, last, EveryLane{});
}

// In every square of 2 * Step rows and lanes, swaps the upper right and lower left quarters.
template <int Step, int... Lane>
inline void ExchangeQuarters(Int (&rows)[kLanes], std::integer_sequence<int, Lane...>) {
    for (int i = 0; i < kLanes; ++i) {
        if ((i & Step) == 0) {
            const Int upper = rows[i];
            const Int lower = rows[i + Step];
            rows[i] = __builtin_shufflevector(upper, lower, ((Lane & Step) ? kLanes + Lane - Step : Lane)...);
            rows[i + Step] =
                __builtin_shufflevector(upper, lower, ((Lane & Step) ? kLanes + Lane : Lane + Step)...);
        }
    }
}

// Swaps lane j of row i with lane i of row j.
template <int Step = kLanes / 2>
inline void Transpose(Int (&rows)[kLanes]) {
    if constexpr (Step > 0) {
        ExchangeQuarters<Step>(rows, EveryLane{});
        Transpose<Step / 2>(rows);
    }
}
#endif

}  // namespace HYBRID_VARIANT
