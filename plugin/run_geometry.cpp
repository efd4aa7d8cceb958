#include "plugin/run_geometry.h"

#include "photoshop/image_modes.h"
#include "plugin/color_modes.h"

namespace {

constexpr int32_t kNoColorPlanes = 0;  // a mode that is not filtered
constexpr int32_t kAllPlanes = -1;

// First for samples of one byte, then for larger ones.
constexpr ModeConversion kLab[] = {{_ConvertLAB8toRGB24, _ConvertRGB24toLAB8},
                                   {_ConvertLAB16toRGB48, _ConvertRGB48toLAB16}};
constexpr ModeConversion kCMYK[] = {{_ConvertCMYK8toRGB24, _ConvertRGB24toCMYK8},
                                    {_ConvertCMYK16toRGB48, _ConvertRGB48toCMYK16}};

struct Mode {
    int32_t colorPlanes;
    int32_t filteredPlanes;
    const ModeConversion *conversions;
};
constexpr Mode kUnsupported = {kNoColorPlanes, 0, nullptr};
constexpr Mode kGray = {1, 1, nullptr};
constexpr Mode kRGB = {3, 3, nullptr};
constexpr Mode kLabColor = {3, 3, kLab};
constexpr Mode kCMYKColor = {4, 3, kCMYK};
constexpr Mode kMultichannel = {kAllPlanes, kAllPlanes, nullptr};

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
    run->conversion =
        mode.conversions == nullptr ? nullptr : &mode.conversions[run->sampleBytes == 1 ? 0 : 1];
    run->extraPlanes = run->planes - run->colorPlanes;
    run->row = record->outRect.top - record->filterRect.top;
    if (IsEmpty(record->filterRect) || run->width > INT16_MAX || run->height > INT16_MAX) {
        return filterBadParameters;
    }
    // Images store the bytes per pixel in 16 bits.
    const bool fits = run->planes * run->sampleBytes <= INT16_MAX;
    return fits && run->colorPlanes > 0 && run->extraPlanes >= 0 ? noErr : filterBadMode;
}
