#include "median/plain/plain_filter.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <vector>

#include "median/plain/neighborhood.h"
#include "median/plain/scheduled_median.h"
#include "median/plain/table_median.h"

namespace {

constexpr int32_t kMargin = kMaxRadius;
constexpr int32_t kBandLines = 2 * kMargin + 1;
constexpr int32_t kCenterLine = kMargin;

struct Color {
    float r, g, b;
};

// The 13 lines around the one being computed; image pixel x is at x + kMargin.
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
    Color *const *center = band.data() + kCenterLine;
    float r[kMaxSetSize], g[kMaxSetSize], b[kMaxSetSize];
    for (int32_t i = 0; i < count; ++i) {
        const Color &color = center[offsets[i].dy][x + kMargin + offsets[i].dx];
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
    // At radius 1 the slanted sets would equal the diagonals.
    if (sets.setSize < 4 * 2 + 1) {
        SetCandidate(&candidates, 2, center);
        return CandidateAt(candidates, returnMedian(3, candidates.r, candidates.g, candidates.b, table));
    }
    SetCandidate(&candidates, 2, SetMedian(band, x, sets.firstSlanted, sets.setSize));
    SetCandidate(&candidates, 3, SetMedian(band, x, sets.secondSlanted, sets.setSize));
    // The centre counts three times, so that a pixel that differs little from its surroundings stays.
    for (int32_t i = 4; i < 7; ++i) {
        SetCandidate(&candidates, i, center);
    }
    return CandidateAt(candidates, returnMedianScheduling(7, candidates.r, candidates.g, candidates.b));
}

// Converts a layout's samples to colours and back; a grey sample stands for three equal components.
template <typename Sample, size_t kSamples>
struct Samples {
    static constexpr size_t kGreen = kSamples == 3 ? 1 : 0;

    static void Widen(const uint8_t *bytes, int32_t width, Color *line) {
        for (int32_t x = 0; x < width; ++x) {
            Sample samples[kSamples];
            std::memcpy(samples, bytes + static_cast<size_t>(x) * sizeof samples, sizeof samples);
            line[x + kMargin] = {static_cast<float>(samples[0]), static_cast<float>(samples[kGreen]),
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

    static void Filter(const PlainImage &image, int32_t radius, uint8_t *filtered) {
        const Neighborhood sets = MakeNeighborhood(radius);
        uint32_t table[kSquareRootTableSize];
        build_table(table);
        const size_t rowBytes = static_cast<size_t>(image.width) * sizeof(Sample) * kSamples;
        std::vector<Color> lines(static_cast<size_t>(image.width + 2 * kMargin) * kBandLines);
        Band band;
        for (size_t i = 0; i < band.size(); ++i) {
            band[i] = lines.data() + i * static_cast<size_t>(image.width + 2 * kMargin);
        }
        for (int32_t t = 0; t < image.height + 2 * kMargin; ++t) {
            const int32_t fetched = std::clamp(t - kMargin, 0, image.height - 1);
            Widen(image.bytes + static_cast<size_t>(fetched) * rowBytes, image.width, band.back());
            for (int32_t x = 0; t >= 2 * kMargin && x < image.width; ++x) {
                uint8_t *row = filtered + static_cast<size_t>(t - 2 * kMargin) * rowBytes;
                StorePixel(FilteredPixel(band, x, sets, table), x, row);
            }
            std::rotate(band.begin(), band.begin() + 1, band.end());
        }
    }
};

}  // namespace

void FilterPlainly(const PlainImage &image, int32_t radius, uint8_t *filtered) {
    switch (image.format) {
        case PixelFormat::gray8:
            return Samples<uint8_t, 1>::Filter(image, radius, filtered);
        case PixelFormat::gray16:
            return Samples<uint16_t, 1>::Filter(image, radius, filtered);
        case PixelFormat::rgb8:
            return Samples<uint8_t, 3>::Filter(image, radius, filtered);
        case PixelFormat::rgb16:
            return Samples<uint16_t, 3>::Filter(image, radius, filtered);
        case PixelFormat::gray16Full:
        case PixelFormat::rgb16Full:
        case PixelFormat::gray16Tagged:
        case PixelFormat::rgb16Tagged:
            break;
    }
}
