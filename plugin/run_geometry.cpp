#include "plugin/run_geometry.h"

#include "photoshop/image_modes.h"

namespace {

constexpr int32_t kNoColorPlanes = 0;  // a mode that is not filtered
constexpr int32_t kAllPlanes = -1;

struct Mode {
    int32_t colorPlanes;
    int32_t filteredPlanes;
};
constexpr Mode kUnsupported = {kNoColorPlanes, 0};
constexpr Mode kGray = {1, 1};
constexpr Mode kRGB = {3, 3};
constexpr Mode kLabColor = {3, 3};
constexpr Mode kCMYKColor = {4, 3};
constexpr Mode kMultichannel = {kAllPlanes, kAllPlanes};

// Indexed by image mode.
constexpr Mode kModes[plugInModeCount] = {
    /* Bitmap */ kUnsupported,
    /* Gray */ kGray,
    /* Indexed */ kUnsupported,
    /* RGB */ kRGB,
    /* CMYK */ kCMYKColor,
    /* HSL */ kUnsupported,
    /* HSB */ kUnsupported,
    /* Multichannel */ kMultichannel,
    /* Duotone */ kUnsupported,
    /* Lab */ kLabColor,
    /* Gray 16 */ kGray,
    /* RGB 48 */ kRGB,
    /* Lab 48 */ kLabColor,
    /* CMYK 64 */ kCMYKColor,
    /* Deep multichannel */ kMultichannel,
    /* Duotone 16 */ kUnsupported,
    /* RGB 96 */ kRGB,
    /* Gray 32 */ kGray,
};

Mode ModeOf(int16_t imageMode) {
    return imageMode >= 0 && imageMode < plugInModeCount ? kModes[imageMode] : kUnsupported;
}

}  // namespace

bool IsEmpty(const Rect &rect) {
    return rect.right <= rect.left || rect.bottom <= rect.top;
}

int64_t RowBufferSize(const RunGeometry &run) {
    return int64_t{run.width} + int64_t{run.width} * run.planes * run.sampleBytes;
}

OSErr GetRunGeometry(const PluginState *state, RunGeometry *run) {
    const FilterRecord *record = state->filterRecord;
    run->sampleBytes = state->depth / 8;
    run->width = record->filterRect.right - record->filterRect.left;
    run->height = record->filterRect.bottom - record->filterRect.top;
    run->planes = record->planes;
    const Mode mode = ModeOf(record->imageMode);
    run->colorPlanes = mode.colorPlanes == kAllPlanes ? run->planes : mode.colorPlanes;
    run->filteredPlanes = mode.filteredPlanes == kAllPlanes ? run->planes : mode.filteredPlanes;
    run->conversion = ConversionOf(record->imageMode, run->sampleBytes);
    run->extraPlanes = run->planes - run->colorPlanes;
    run->row = record->outRect.top - record->filterRect.top;
    if (IsEmpty(record->filterRect) || run->width > INT16_MAX || run->height > INT16_MAX) {
        return filterBadParameters;
    }
    // Images store the bytes per pixel in 16 bits.
    const bool fits = run->planes * run->sampleBytes <= INT16_MAX;
    return fits && run->colorPlanes > 0 && run->extraPlanes >= 0 ? noErr : filterBadMode;
}
