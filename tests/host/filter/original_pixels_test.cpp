// Results of the filter are pixels of the document, with all their bits.
#include "host/document/original_pixels.h"

#include <cmath>
#include <limits>

#include "colors/color_modes.h"
#include "host/document/document_rows.h"
#include "host/filter/tiles.h"
#include "tests/host/host_fixture.h"

namespace {

constexpr int32_t kWidth = 70;
constexpr int32_t kHeight = 41;

struct Kind {
    int16_t mode;
    int32_t depth, colorPlanes;
};
constexpr Kind kKinds[] = {{plugInModeGrayScale, 8, 1}, {plugInModeRGBColor, 8, 3},
                           {plugInModeLabColor, 8, 3},  {plugInModeCMYKColor, 8, 4},
                           {plugInModeGray16, 16, 1},   {plugInModeRGB48, 16, 3},
                           {plugInModeLab48, 16, 3},    {plugInModeCMYK64, 16, 4},
                           {plugInModeGray32, 32, 1},   {plugInModeRGB96, 32, 3}};

// Noise; areas of one colour; or noise of values so close that many look alike to the filter.
enum Pattern { kNoise, kFlat, kClose, kPatternCount };

template <typename Sample>
void Draw(Pattern pattern, Document *document) {
    auto *samples = reinterpret_cast<Sample *>(document->source.get());
    const int32_t planes = document->planes;
    for (int32_t i = 0; i < kWidth * kHeight * planes; ++i) {
        const int32_t pixel = i / planes;
        const int32_t corner = pixel - pixel % kWidth % 5 - pixel / kWidth % 4 * kWidth;
        if (i % planes >= document->colorPlanes) {
            samples[i] = pixel % 7 == 3 ? Sample{0} : samples[i];
        } else if (pattern == kFlat) {
            samples[i] = samples[corner * planes + i % planes];
        } else if (pattern == kClose) {
            samples[i] = static_cast<Sample>(100 + i % 31 * i % 11 % 4);
        }
    }
}

Document MakeDocument(const Kind &kind, Pattern pattern, bool extra) {
    Document document = RandomDocument(kind.mode, kind.depth, kind.colorPlanes,
                                       kind.colorPlanes + (extra ? 2 : 0), kWidth, kHeight);
    (kind.depth == 8 ? Draw<uint8_t> : kind.depth == 16 ? Draw<uint16_t> : Draw<float>)(pattern, &document);
    ResetDestination(&document, WholeRect(document));
    if (extra) {
        document.selection = VRect{3, 5, 38, 66};
    }
    document.range = pattern == kClose ? SampleRange{90, 120000} : SampleRange{0.1F, 0.9F};
    return document;
}

using Bytes = std::vector<uint8_t>;

uint8_t *PixelAt(const Document &document, const PixelBlock &pixels, int32_t y, int32_t x) {
    return pixels.get() + y * RowBytes(document) + int64_t{x} * document.planes * SampleBytes(document);
}

Bytes ColorAt(const Document &document, const PixelBlock &pixels, int32_t y, int32_t x) {
    const uint8_t *color = PixelAt(document, pixels, y, x);
    return {color, color + document.colorPlanes * SampleBytes(document)};
}

// A colour as the filter gives or gets it; or what becomes of it on its way through the plug-in.
Bytes Shown(const Document &document, const PixelBlock &pixels, int32_t y, int32_t x, bool through) {
    Bytes shown(static_cast<size_t>(document.colorPlanes * ShownDepth(document) / 8));
    const auto hiPlane = static_cast<int16_t>(document.colorPlanes - 1);
    DeliverRows(document, pixels, {{y, x, y + 1, x + 1}, 0, hiPlane, 0}, shown.data());
    const ModeConversion *conversion = ConversionOf(document.imageMode, SampleBytes(document));
    if (through && conversion != nullptr) {
        conversion->toRGB(shown.data(), 1);
        conversion->fromRGB(shown.data(), 1);
    }
    return shown;
}

// Whether an original of that colour, or a transparent one without a colour given, lies in the window.
bool IsNearby(const Document &document, const Bytes *color, int32_t y, int32_t x, int32_t radius) {
    const VRect area = SelectedRect(document);
    for (int32_t t = std::max(y - radius, area.top); t < std::min(y + radius + 1, area.bottom); ++t) {
        for (int32_t s = std::max(x - radius, area.left); s < std::min(x + radius + 1, area.right); ++s) {
            const bool transparent = IsTransparent(document, PixelAt(document, document.source, t, s));
            if (color == nullptr ? transparent
                                 : !transparent && ColorAt(document, document.source, t, s) == *color) {
                return true;
            }
        }
    }
    return false;
}

struct OriginalPixels : HostTest {
    static void Filter(bool restore, double radius, Document *document) {
        FilterRequest request = {&realFilter, document, {}, true, {}};
        request.orders.action.items.push_back({.key = kRadiusKey, .type = typeFloat, .number = radius});
        const Tile whole = {SelectedRect(*document), WholeRect(*document)};
        ASSERT_EQ((restore ? RunTile(request, whole) : RunFilter(request)).result, noErr);
    }
};

TEST_F(OriginalPixels, AreTheResultsInEveryModeAndDepth) {
    for (const Kind &kind : kKinds) {
        for (int32_t i = 0; i < 2 * kPatternCount; ++i) {
            const auto pattern = static_cast<Pattern>(i / 2);
            const int32_t radius = 1 + (i + kind.mode) % 4;
            SCOPED_TRACE(testing::Message() << kind.mode << " " << i << " " << radius);
            Document document = MakeDocument(kind, pattern, i % 2 == 1);
            Document plain = MakeDocument(kind, pattern, i % 2 == 1);
            Filter(true, radius, &document);
            Filter(false, radius, &plain);
            const VRect area = SelectedRect(document);
            int changed = 0;
            for (int32_t y = 0; y < kHeight; ++y) {
                for (int32_t x = 0; x < kWidth; ++x) {
                    const uint8_t *pixel = PixelAt(document, document.source, y, x);
                    const Bytes before = ColorAt(document, document.source, y, x);
                    const Bytes after = ColorAt(document, document.destination, y, x);
                    const Bytes chosen = Shown(plain, plain.destination, y, x, false);
                    const bool inside = y >= area.top && y < area.bottom && x >= area.left && x < area.right;
                    const bool leftAlone = Shown(document, document.source, y, x, true) == chosen;
                    if (!inside || leftAlone || IsTransparent(document, pixel)) {
                        ASSERT_EQ(after, before) << y << " " << x;
                    } else if (IsNearby(document, &after, y, x, radius)) {
                        ASSERT_EQ(Shown(document, document.destination, y, x, true), chosen) << y << " " << x;
                        ++changed;
                    } else {
                        // The white that the filter takes transparent pixels for.
                        ASSERT_TRUE(IsNearby(document, nullptr, y, x, radius)) << y << " " << x;
                        ASSERT_EQ(after, ColorAt(plain, plain.destination, y, x));
                    }
                    const uint8_t *result = PixelAt(document, document.destination, y, x);
                    ASSERT_TRUE(std::equal(pixel + before.size(),
                                           pixel + PixelBytes(document) / MaskBytes(document),
                                           result + before.size()));
                }
            }
            EXPECT_TRUE(changed > 0 || pattern == kFlat) << "nothing was filtered";
        }
    }
}

TEST_F(OriginalPixels, WhatIsNotFiniteStaysInItsPlace) {
    for (const Kind &kind : {Kind{plugInModeGray32, 32, 1}, Kind{plugInModeRGB96, 32, 3}}) {
        Document document = MakeDocument(kind, kNoise, false);
        auto *samples = reinterpret_cast<float *>(document.source.get());
        const float odd[] = {NAN, INFINITY, -INFINITY};
        for (int32_t i = 0; i < 300; ++i) {
            samples[i * 29 % (kWidth * kHeight) * kind.colorPlanes + i % kind.colorPlanes] = odd[i % 3];
        }
        std::fill_n(samples + 20 * kWidth * kind.colorPlanes, kWidth * kind.colorPlanes, NAN);
        ResetDestination(&document, WholeRect(document));
        Filter(true, 2, &document);
        int foreign = 0;
        for (int32_t y = 0; y < kHeight; ++y) {
            for (int32_t x = 0; x < kWidth; ++x) {
                const Bytes after = ColorAt(document, document.destination, y, x);
                if (!HasFiniteColors(document, PixelAt(document, document.source, y, x))) {
                    ASSERT_EQ(after, ColorAt(document, document.source, y, x)) << y << " " << x;
                } else {
                    ASSERT_TRUE(HasFiniteColors(document, PixelAt(document, document.destination, y, x)));
                    foreign += !IsNearby(document, &after, y, x, 2);
                }
            }
        }
        EXPECT_EQ(foreign, 0);
    }
}

}  // namespace
