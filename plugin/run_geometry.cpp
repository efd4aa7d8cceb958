#include "plugin/run_geometry.h"

#include "photoshop/image_modes.h"

namespace {

constexpr int8_t kNoColorPlanes = 0;  // a mode that must not reach the run
constexpr int8_t kAllPlanes = -1;

// By image mode.
constexpr int8_t kColorPlanes[plugInModeCount] = {
    /* Bitmap */ kNoColorPlanes,
    /* Gray */ 1,
    /* Indexed */ kNoColorPlanes,
    /* RGB */ 3,
    /* CMYK */ 4,
    /* HSL */ kNoColorPlanes,
    /* HSB */ kNoColorPlanes,
    /* Multichannel */ kAllPlanes,
    /* Duotone */ kNoColorPlanes,
    /* Lab */ 3,
    /* Gray 16 */ 1,
    /* RGB 48 */ 3,
    /* Lab 48 */ 3,
    /* CMYK 64 */ 4,
    /* Deep multichannel */ kAllPlanes,
    /* Duotone 16 */ kNoColorPlanes,
    /* RGB 96 */ 3,
    /* Gray 32 */ 1,
};

int32_t ColorPlanes(int16_t imageMode, int32_t planes) {
    if (imageMode < 0 || imageMode >= plugInModeCount) {
        return kNoColorPlanes;
    }
    const int8_t count = kColorPlanes[imageMode];
    return count == kAllPlanes ? planes : count;
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
    run->colorPlanes = ColorPlanes(record->imageMode, run->planes);
    run->extraPlanes = run->planes - run->colorPlanes;
    run->row = record->outRect.top - record->filterRect.top;
    if (run->width > INT16_MAX || run->height > INT16_MAX) {
        return filterBadParameters;
    }
    return run->colorPlanes > 0 && run->extraPlanes >= 0 ? noErr : filterBadMode;
}
