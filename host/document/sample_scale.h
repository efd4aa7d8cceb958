// The two scales of 16-bit samples: 0 to 65535 in files, 0 to 32768 in the filter.
#pragma once

#include <algorithm>
#include <cstdint>

#include "photoshop/image_modes.h"

constexpr uint32_t kMaxFileSample16 = 65535;

constexpr uint16_t FilterSample(uint16_t fileSample) {
    return static_cast<uint16_t>((fileSample * uint32_t{plugInMaxSample16} + kMaxFileSample16 / 2) /
                                 kMaxFileSample16);
}

// Samples beyond white count as white.
constexpr uint16_t FileSample(uint16_t filterSample) {
    const uint32_t sample = std::min(filterSample, plugInMaxSample16);
    return static_cast<uint16_t>((sample * kMaxFileSample16 + plugInMaxSample16 / 2) / plugInMaxSample16);
}
