// Access to samples in the host's rows, which may be unaligned. Indices count samples.
#pragma once

#include <cstdint>
#include <cstring>

template <typename Sample>
Sample LoadSample(const void *samples, int64_t index) {
    Sample sample;
    std::memcpy(&sample, static_cast<const uint8_t *>(samples) + index * int64_t{sizeof(Sample)},
                sizeof sample);
    return sample;
}

template <typename Sample>
void StoreSample(void *samples, int64_t index, Sample sample) {
    std::memcpy(static_cast<uint8_t *>(samples) + index * int64_t{sizeof(Sample)}, &sample, sizeof sample);
}
