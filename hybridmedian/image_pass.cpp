// The filter's pass over a run's working image: asks for the radius, copies the image to a temporary RGB
// image with a border, filters that, and copies the result back.
#include <algorithm>
#include <cstring>

#include "hybridmedian/public.h"
#include "median/hybrid_filter.h"
#include "median/kernel/hybrid_kernel.h"
#include "platform/owned_block.h"
#include "settings/setting_registry.h"
#include "toolkit/filter_hooks.h"
#include "toolkit/run_context.h"

namespace {

constexpr int32_t kBorder = kMaxRadius;  // in pixels: as far as the filter looks
static_assert(kMinRadius == kHybridMinRadius && kMaxRadius == kHybridMaxRadius);
constexpr int32_t kRGB = 3;
constexpr int16_t kMaxSide = INT16_MAX - 2 * kBorder;  // images count their sides in 16 bits

struct Pass {
    NamedImage *image;
    NamedImage *temp;
    const RunContext *context;
    int32_t width;
    int32_t height;
    int32_t colorPlanes;  // 1 or 3
};

float RadiusOf(Handle parameters) {
    FilterParameters values;
    std::memcpy(&values, *parameters, sizeof values);
    return values.radius;
}

// Reports progress to the host and asks whether to stop; called once per line.
bool Cancelled(const Pass &pass, int32_t done, int32_t total) {
    DoProgress(pass.context, done, total);
    return CommandPeriod(pass.context) != 0;
}

// The line's own pixels start at pixel kBorder. RGB is read straight into place; grey is read from the
// buffer's sample kBorder on.
template <typename Sample>
void WidenGrey(Sample *line, int32_t width) {
    std::fill_n(line, kBorder, line[kBorder]);
    std::fill_n(line + width + kBorder, kBorder, line[width + kBorder - 1]);
    // From the right end, so that no sample is overwritten before it is spread.
    for (int32_t p = width + 2 * kBorder - 1; p >= 0; --p) {
        std::fill_n(line + p * kRGB, kRGB, line[p]);
    }
}

template <typename Sample>
void RepeatEdgePixels(Sample *line, int32_t width) {
    for (int32_t p = 0; p < kBorder; ++p) {
        std::copy_n(line + kBorder * kRGB, kRGB, line + p * kRGB);
        std::copy_n(line + (width + kBorder - 1) * kRGB, kRGB, line + (width + kBorder + p) * kRGB);
    }
}

template <typename Sample>
OSErr Widen(const Pass &pass, Sample *line) {
    constexpr int32_t kSampleSize = sizeof(Sample);
    for (int32_t t = -kBorder; t < pass.height + kBorder; ++t) {
        if (Cancelled(pass, t + kBorder, (pass.height + 2 * kBorder) * 3)) {
            return userCanceledErr;
        }
        OSErr err = GetLine(pass.image, 0, std::clamp(t, 0, pass.height - 1),
                            pass.width * pass.colorPlanes * kSampleSize, line + kBorder * pass.colorPlanes);
        if (pass.colorPlanes == 1) {
            WidenGrey(line, pass.width);
        } else {
            RepeatEdgePixels(line, pass.width);
        }
        if (err == noErr) {
            err = PutLine(pass.temp, 0, t + kBorder, (pass.width + 2 * kBorder) * kRGB * kSampleSize, line);
        }
        if (err != noErr) {
            return err;
        }
    }
    return noErr;
}

template <typename Sample>
OSErr Narrow(const Pass &pass, Sample *line) {
    constexpr int32_t kSampleSize = sizeof(Sample);
    for (int32_t y = 0; y < pass.height; ++y) {
        OSErr err = GetLine(pass.temp, 0, y + kBorder, (pass.width + 2 * kBorder) * kRGB * kSampleSize, line);
        if (Cancelled(pass, y + 2 * pass.height, 3 * pass.height)) {
            return userCanceledErr;
        }
        if (pass.colorPlanes == 1) {
            for (int32_t p = 0; p < pass.width + 2 * kBorder; ++p) {
                const Sample *rgb = line + p * kRGB;
                line[p] = static_cast<Sample>((rgb[0] + rgb[1] + rgb[2] + 1) / 3);
            }
        }
        if (err == noErr) {
            err = PutLine(pass.image, 0, y, pass.width * pass.colorPlanes * kSampleSize,
                          line + kBorder * pass.colorPlanes);
        }
        if (err != noErr) {
            return err;
        }
    }
    return noErr;
}

template <typename Sample>
OSErr FilterThroughTempImage(Pass pass, float radius) {
    const OwnedBlock<Sample> line = MakeOwnedBlock<Sample>(int64_t{pass.width + 2 * kBorder} * kRGB);
    if (line == nullptr) {
        return memFullErr;
    }
    OSErr err =
        MakeTempImage(static_cast<int16_t>(pass.width + 2 * kBorder),
                      static_cast<int16_t>(pass.height + 2 * kBorder), kRGB * sizeof(Sample), &pass.temp);
    if (err == noErr) {
        err = Widen(pass, line.get());
    }
    if (err == noErr) {
        // The middle third of the bar.
        err = NewHyMedian(pass.temp, radius, true, pass.context, 1, 2, 3);
    }
    if (err == noErr) {
        err = Narrow(pass, line.get());
    }
    if (pass.temp != nullptr) {
        TossTempImage(pass.temp);
    }
    return err;
}

template <typename Sample>
OSErr ProcessSamples(NamedImage *image, RunContext *context, Handle parameters, SPBlock *settings,
                     Boolean skipDialog) {
    const int32_t colorPlanes = std::abs(context->colorPlanes);
    if (colorPlanes != 1 && colorPlanes != kRGB) {
        return filterBadMode;
    }
    if (context->width > kMaxSide || context->height > kMaxSide) {
        return memFullErr;
    }
    if (!skipDialog && InteractiveDialog(image, context, parameters) == userCanceledErr) {
        return userCanceledErr;
    }
    const float radius = RadiusOf(parameters);
    SetSPInputSettingFloat(settings, 0, radius);
    SetPreferenceFloat(context, kRememberedRadiusOffset, radius);
    return FilterThroughTempImage<Sample>(
        {image, nullptr, context, context->width, context->height, colorPlanes}, radius);
}

}  // namespace

OSErr ProcessImage(NamedImage *image, RunContext *context, Handle parameters, SPBlock *settings,
                   Boolean skipDialog) {
    return ProcessSamples<uint8_t>(image, context, parameters, settings, skipDialog);
}

OSErr ProcessImage16_48(NamedImage *image, RunContext *context, Handle parameters, SPBlock *settings,
                        Boolean skipDialog) {
    return ProcessSamples<uint16_t>(image, context, parameters, settings, skipDialog);
}
