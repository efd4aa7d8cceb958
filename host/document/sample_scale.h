// Samples in files and in the filter: 16-bit ones go up to 65535 in files and up to 32768 in the filter, and
// floats become 16-bit ones.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "host/document/document.h"
#include "photoshop/image_modes.h"

constexpr uint32_t kMaxFileSample16 = 65535;

// fileSample * 32768 / 65535, rounded.
constexpr uint16_t FilterSample(uint16_t fileSample) {
    return static_cast<uint16_t>(fileSample / 2 + fileSample % 2);
}

// Samples beyond white count as white.
constexpr uint16_t FileSample(uint16_t filterSample) {
    const uint32_t sample = std::min(filterSample, plugInMaxSample16);
    return static_cast<uint16_t>((sample * kMaxFileSample16 + plugInMaxSample16 / 2) / plugInMaxSample16);
}

// Values outside the range are clamped to it; NaN is the least.
inline uint16_t FilterSample(float fileSample, const SampleRange &range) {
    const double part = (double{fileSample} - double{range.least}) / (double{range.greatest} - range.least);
    return part > 0 ? static_cast<uint16_t>(std::lround(std::min(part, 1.0) * plugInMaxSample16))
                    : uint16_t{0};
}

inline float FileSample(uint16_t filterSample, const SampleRange &range) {
    const double part = double{1} * std::min(filterSample, plugInMaxSample16) / plugInMaxSample16;
    return static_cast<float>(range.least + part * (double{range.greatest} - range.least));
}

// Opacity goes from 0 to 1, and only none at all is 0 in the filter.
inline uint16_t FilterOpacity(float opacity) {
    return opacity > 0 ? std::max(FilterSample(opacity, SampleRange{}), uint16_t{1}) : uint16_t{0};
}
