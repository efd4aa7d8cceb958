#include "median/hybrid_filter.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

#include "median/neighborhood.h"
#include "median/scheduled_median.h"
#include "median/table_median.h"
#include "platform/owned_block.h"

namespace {

constexpr int32_t kMargin = kMaxRadius;
constexpr int32_t kBandLines = 2 * kMargin + 1;
constexpr int32_t kCenterLine = kMargin;

struct Color {
    float r, g, b;
};

// The 13 lines around the one being computed; image pixel x sits at x + kMargin.
using Band = std::array<Color *, kBandLines>;

struct Candidates {
    float r[7], g[7], b[7];
};

void SetCandidate(Candidates *candidates, int32_t index, const Color &color) {
    candidates->r[index] = color.r;
    candidates->g[index] = color.g;
    candidates->b[index] = color.b;
}

Color CandidateAt(const Candidates &candidates, int32_t index) {
    return {candidates.r[index], candidates.g[index], candidates.b[index]};
}

Color SetMedian(const Band &band, int32_t x, const PixelOffset *offsets, int32_t count) {
    float r[kMaxSetSize], g[kMaxSetSize], b[kMaxSetSize];
    for (int32_t i = 0; i < count; ++i) {
        const Color &color =
            band[static_cast<size_t>(kCenterLine + offsets[i].dy)][x + kMargin + offsets[i].dx];
        r[i] = color.r;
        g[i] = color.g;
        b[i] = color.b;
    }
    const int32_t median = returnMedianScheduling(count, r, g, b);
    return {r[median], g[median], b[median]};
}

Color FilteredPixel(const Band &band, int32_t x, const Neighborhood &sets, const uint32_t *table) {
    const Color center = band[kCenterLine][x + kMargin];
    Candidates candidates;
    SetCandidate(&candidates, 0, SetMedian(band, x, sets.diagonal, sets.setSize));
    SetCandidate(&candidates, 1, SetMedian(band, x, sets.upright, sets.setSize));
    // At radius 1 the slanted sets would be the diagonals over again.
    if (sets.setSize < 4 * 2 + 1) {
        SetCandidate(&candidates, 2, center);
        return CandidateAt(candidates, returnMedian(3, candidates.r, candidates.g, candidates.b, table));
    }
    SetCandidate(&candidates, 2, SetMedian(band, x, sets.firstSlanted, sets.setSize));
    SetCandidate(&candidates, 3, SetMedian(band, x, sets.secondSlanted, sets.setSize));
    // The centre counts three times: what differs little from its surroundings stays.
    for (int32_t i = 4; i < 7; ++i) {
        SetCandidate(&candidates, i, center);
    }
    return CandidateAt(candidates, returnMedianScheduling(7, candidates.r, candidates.g, candidates.b));
}

// How samples of a layout become colours and go back.
template <typename Sample, size_t kSamples>
struct Layout {
    static void Widen(const uint8_t *bytes, int32_t width, Color *line) {
        for (int32_t x = 0; x < width; ++x) {
            Sample samples[kSamples];
            std::memcpy(samples, bytes + static_cast<size_t>(x) * sizeof samples, sizeof samples);
            line[x + kMargin] = {static_cast<float>(samples[0]), static_cast<float>(samples[kSamples / 2]),
                                 static_cast<float>(samples[kSamples - 1])};
        }
        std::fill_n(line, kMargin, line[kMargin]);
        std::fill_n(line + width + kMargin, kMargin, line[width + kMargin - 1]);
    }

    static void StorePixel(const Color &color, int32_t x, uint8_t *bytes) {
        const float components[] = {color.r, color.g, color.b};
        Sample samples[kSamples];
        for (size_t i = 0; i < kSamples; ++i) {
            samples[i] = static_cast<Sample>(components[i]);
        }
        std::memcpy(bytes + static_cast<size_t>(x) * sizeof samples, samples, sizeof samples);
    }
};

struct LayoutCalls {
    int16_t bytesPerPixel;
    void (*widen)(const uint8_t *bytes, int32_t width, Color *line);
    void (*storePixel)(const Color &color, int32_t x, uint8_t *bytes);
};

template <typename Sample, size_t kSamples>
constexpr LayoutCalls CallsOf() {
    using L = Layout<Sample, kSamples>;
    return {sizeof(Sample) * kSamples, L::Widen, L::StorePixel};
}

constexpr LayoutCalls kLayouts[] = {
    CallsOf<uint8_t, 1>(),
    CallsOf<uint16_t, 1>(),
    CallsOf<uint8_t, 3>(),
    CallsOf<uint16_t, 3>(),
};

int32_t WholeRadius(float radius) {
    if (radius >= float{kMaxRadius}) {
        return kMaxRadius;
    }
    return radius >= 1.0f ? static_cast<int32_t>(radius) : 0;
}

}  // namespace

OSErr NewHyMedian(NamedImage *image, float radius, Boolean showProgress, const RunContext *context,
                  int32_t progressStart, int32_t progressEnd, int32_t progressTotal) {
    ImageData data;
    GetImageData(image, &data);
    const auto *layout =
        std::find_if(std::begin(kLayouts), std::end(kLayouts),
                     [&](const LayoutCalls &calls) { return calls.bytesPerPixel == data.bytesPerPixel; });
    if (layout == std::end(kLayouts) || data.width < 1 || data.height < 1) {
        return noErr;
    }
    const int32_t width = data.width;
    const int32_t height = data.height;
    const int32_t rowBytes = width * data.bytesPerPixel;

    const Neighborhood sets = MakeNeighborhood(WholeRadius(radius));
    uint32_t table[kSquareRootTableSize];
    build_table(table);

    const int64_t linePixels = width + 2 * kMargin;
    const OwnedBlock<Color> lines = MakeOwnedBlock<Color>(linePixels * kBandLines);
    const OwnedBlock<uint8_t> bytes = MakeOwnedBlock<uint8_t>(rowBytes);
    if (lines == nullptr || bytes == nullptr) {
        return memFullErr;
    }
    Band band;
    for (size_t i = 0; i < band.size(); ++i) {
        band[i] = lines.get() + static_cast<int64_t>(i) * linePixels;
    }

    // Every line that is still to be read lies at least six below the last one written, so the filter works
    // in place.
    const int32_t steps = height + 2 * kMargin;
    for (int32_t t = 0; t < steps; ++t) {
        if (showProgress) {
            const auto share = int64_t{progressEnd - progressStart} * t * 100 / steps;
            DoProgress(context, static_cast<int32_t>(share) + progressStart * 100, progressTotal * 100);
            if (CommandPeriod(context)) {
                return userCanceledErr;
            }
        }
        OSErr err = GetLine(image, 0, std::clamp(t - kMargin, 0, height - 1), rowBytes, bytes.get());
        layout->widen(bytes.get(), width, band.back());
        if (t >= 2 * kMargin) {
            for (int32_t x = 0; x < width; ++x) {
                layout->storePixel(FilteredPixel(band, x, sets, table), x, bytes.get());
            }
            err = err == noErr ? PutLine(image, 0, t - 2 * kMargin, rowBytes, bytes.get()) : err;
        }
        if (err != noErr) {
            return err;
        }
        std::rotate(band.begin(), band.begin() + 1, band.end());
    }
    return noErr;
}
