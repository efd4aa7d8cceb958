#include "plugin/rows.h"

#include <algorithm>

#include "colors/samples.h"
#include "photoshop/image_modes.h"

namespace {

constexpr double kFloatScaleOut = 0.00392156862745098;  // 1/255, which undoes ScaleFloatsIn

template <typename Sample>
constexpr Sample kWhite{};
template <>
constexpr uint8_t kWhite<uint8_t> = plugInMaxSample8;
template <>
constexpr uint16_t kWhite<uint16_t> = plugInMaxSample16;
template <>
constexpr float kWhite<float> = 1.0f;

float ScaledOut(float sample) {
    return static_cast<float>(double{sample} * kFloatScaleOut);
}

uint8_t SelectionByte(uint8_t sample) {
    return sample;
}

// Twice the sample is on a scale of 65535, which is 255 * 257.
uint8_t SelectionByte(uint16_t sample) {
    return static_cast<uint8_t>(std::min(sample * 2 / 257, 255));
}

// Not scaled: mostly 0 or 1.
uint8_t SelectionByte(float sample) {
    return sample > 0 ? static_cast<uint8_t>(std::min(sample, 255.0f)) : 0;
}

// What happens to a colour sample when the extra planes are merged in.
template <typename Sample>
Sample MergedSample(Sample sample) {
    return sample;
}

// Floats are scaled down once more than in rows without extra planes. That is deliberate, and part of the
// result.
template <>
float MergedSample<float>(float sample) {
    return ScaledOut(sample);
}

template <typename Sample>
bool SplitExtraPlanes(const RunGeometry &run, void *row, void *extra) {
    bool foundZero = false;
    for (int64_t x = 0; x < run.width; ++x) {
        const int64_t from = x * run.planes;
        for (int32_t p = 0; p < run.extraPlanes; ++p) {
            StoreSample(extra, x * run.extraPlanes + p, LoadSample<Sample>(row, from + run.colorPlanes + p));
        }
        const bool transparent = LoadSample<Sample>(row, from + run.colorPlanes) == Sample{0};
        foundZero |= transparent;
        for (int32_t p = 0; p < run.colorPlanes; ++p) {
            StoreSample(row, x * run.colorPlanes + p,
                        transparent ? kWhite<Sample> : LoadSample<Sample>(row, from + p));
        }
    }
    return foundZero;
}

// Works from the last pixel, so that nothing is overwritten before it has moved.
template <typename Sample>
void MergeExtraPlanes(const RunGeometry &run, void *row, const void *extra) {
    for (int64_t x = run.width - 1; x >= 0; --x) {
        const int64_t to = x * run.planes;
        for (int32_t p = run.colorPlanes - 1; p >= 0; --p) {
            StoreSample(row, to + p, MergedSample(LoadSample<Sample>(row, x * run.colorPlanes + p)));
        }
        for (int32_t p = 0; p < run.extraPlanes; ++p) {
            StoreSample(row, to + run.colorPlanes + p, LoadSample<Sample>(extra, x * run.extraPlanes + p));
        }
    }
}

template <typename Sample>
void SelectionFromExtraPlane(const RunGeometry &run, const void *extra, uint8_t *selection) {
    for (int64_t x = 0; x < run.width; ++x) {
        selection[x] = SelectionByte(LoadSample<Sample>(extra, x * run.extraPlanes));
    }
}

template <typename Sample>
constexpr RowCalls kCalls = {SplitExtraPlanes<Sample>, MergeExtraPlanes<Sample>,
                             SelectionFromExtraPlane<Sample>};

}  // namespace

const RowCalls &RowCallsFor(int32_t sampleBytes) {
    return sampleBytes == 1 ? kCalls<uint8_t> : sampleBytes == 2 ? kCalls<uint16_t> : kCalls<float>;
}

void ScaleFloatsIn(void *row, int64_t count) {
    for (int64_t i = 0; i < count; ++i) {
        StoreSample(row, i, LoadSample<float>(row, i) * 255.0f);
    }
}

void ScaleFloatsOut(void *row, int64_t count) {
    for (int64_t i = 0; i < count; ++i) {
        StoreSample(row, i, ScaledOut(LoadSample<float>(row, i)));
    }
}
