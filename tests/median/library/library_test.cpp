// The library's call against the filter that the plug-in runs, whatever the image looks like in memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <set>

#include "median/library/hymedian.h"
#include "tests/support/filtered_image.h"

namespace {

constexpr int64_t kWidth = 83, kHeight = 61;

struct Kind {
    int32_t components;
    int32_t sample;
};
constexpr Kind kKinds[] = {{1, HYMEDIAN_UINT8},  {3, HYMEDIAN_UINT8},   {1, HYMEDIAN_UINT16},
                           {3, HYMEDIAN_UINT16}, {1, HYMEDIAN_FLOAT32}, {3, HYMEDIAN_FLOAT32}};
constexpr float kLeast = -1, kGreatest = 3;

using Bytes = std::vector<uint8_t>;

// Noise of few values, so that many pixels are alike on the scale on which they are compared.
Bytes Noise(const Kind &kind, int64_t width = kWidth, int64_t height = kHeight) {
    std::mt19937 random(5);
    Bytes bytes;
    for (int64_t i = 0; i < width * height * kind.components; ++i) {
        const auto value = static_cast<uint16_t>(random() % 50 * 1310 + random() % 2);
        const float real = static_cast<float>(value) / 16000 - 1;
        const auto byte = static_cast<uint8_t>(random());
        const void *from = kind.sample == 1   ? &byte
                           : kind.sample == 2 ? static_cast<const void *>(&value)
                                              : &real;
        const auto *at = static_cast<const uint8_t *>(from);
        bytes.insert(bytes.end(), at, at + kind.sample);
    }
    return bytes;
}

hymedian_image Packed(const Kind &kind, Bytes *bytes, int64_t width = kWidth, int64_t height = kHeight) {
    const int64_t pixel = int64_t{kind.components} * kind.sample;
    return {bytes->data(), width, height, kind.components, kind.sample, width * pixel, pixel, kind.sample};
}

hymedian_options Options(int32_t radius, int32_t threads = 2) {
    hymedian_options options = {};
    options.size = sizeof options;
    options.radius = radius;
    options.threads = threads;
    options.least = kLeast;
    options.greatest = kGreatest;
    return options;
}

Bytes FilteredByCall(const Kind &kind, Bytes source, const hymedian_options &options, int64_t width = kWidth,
                     int64_t height = kHeight) {
    Bytes result(source.size());
    const hymedian_image input = Packed(kind, &source, width, height);
    const hymedian_image output = Packed(kind, &result, width, height);
    EXPECT_EQ(hymedian_filter(&input, &output, &options), HYMEDIAN_OK);
    return result;
}

template <typename Sample, typename Container>
Sample SampleAt(const Container &bytes, size_t index) {
    Sample sample;
    std::memcpy(&sample, bytes.data() + index * sizeof sample, sizeof sample);
    return sample;
}

// On the scale on which the filter compares.
Bytes Compared(const Kind &kind, const Bytes &bytes) {
    if (kind.sample == HYMEDIAN_UINT8) {
        return bytes;
    }
    Bytes compared;
    for (size_t i = 0; i < bytes.size() / static_cast<size_t>(kind.sample); ++i) {
        const auto part = kind.sample == HYMEDIAN_UINT16
                              ? SampleAt<uint16_t>(bytes, i) / 65535.0
                              : (double{SampleAt<float>(bytes, i)} - kLeast) / (kGreatest - kLeast);
        const auto step = static_cast<uint16_t>(std::lround(std::clamp(part, 0.0, 1.0) * 32768));
        compared.push_back(static_cast<uint8_t>(step));
        compared.push_back(static_cast<uint8_t>(step >> 8));
    }
    return compared;
}

// A pixel with as many bytes as any kind has.
using Pixel = std::array<uint8_t, 12>;

std::vector<Pixel> PixelsOf(const Kind &kind, const Bytes &bytes) {
    const auto size = static_cast<size_t>(kind.components * kind.sample);
    std::vector<Pixel> pixels(bytes.size() / size);
    for (size_t i = 0; i < pixels.size(); ++i) {
        std::copy_n(&bytes[i * size], size, pixels[i].begin());
    }
    return pixels;
}

TEST(Library, ChoosesTheOriginalsThatThePlugInChooses) {
    for (const Kind &kind : kKinds) {
        for (const auto &[width, height] :
             {std::pair<int16_t, int16_t>{kWidth, kHeight}, {2003, 20}, {1, 1}}) {
            const Bytes source = Noise(kind, width, height);
            const auto compared = static_cast<int16_t>(kind.components * std::min(kind.sample, 2));
            const auto originals = PixelsOf(kind, source);
            for (int radius = 1; radius <= 6; ++radius) {
                const Bytes result = FilteredByCall(kind, source, Options(radius), width, height);
                ASSERT_EQ(Compared(kind, result), Filtered({width, height, compared, Compared(kind, source)},
                                                           static_cast<float>(radius)))
                    << kind.components << " x " << kind.sample << " bytes, radius " << radius;
                const std::set<Pixel> known(originals.begin(), originals.end());
                for (const Pixel &pixel : PixelsOf(kind, result)) {
                    ASSERT_EQ(known.count(pixel), 1u) << kind.components << " x " << kind.sample << " bytes";
                }
            }
        }
    }
}

// The same picture in other places of memory.
struct Arrangement {
    const char *name;
    // Strides as multiples of the sample's size; rows and pixels run backwards if negative.
    int64_t pixel, component, row;
    size_t offset;
};
constexpr Arrangement kArrangements[] = {
    {"other channels in between, odd address", 5, 1, 5 * kWidth + 7, 1},
    {"planes", 1, kWidth *kHeight, kWidth, 0},
    {"bottom up", 3, 1, -3 * kWidth, 0},
    {"right to left, components the other way round", -4, -1, 4 * kWidth, 2},
    {"columns", kHeight * 3, 1, 3, 0},
};

struct Arranged {
    Bytes bytes;
    hymedian_image image;
};

Arranged Arrange(const Kind &kind, const Arrangement &way, const Bytes &packed) {
    Arranged result = {Bytes(static_cast<size_t>(5 * (kWidth + 2) * kHeight * kind.sample + 8), 0xA5), {}};
    hymedian_image &image = result.image;
    image = {nullptr,
             kWidth,
             kHeight,
             kind.components,
             kind.sample,
             way.row * kind.sample,
             way.pixel * kind.sample,
             way.component * kind.sample};
    uint8_t *first = result.bytes.data() + way.offset;
    for (const auto &[count, stride] : {std::pair<int64_t, ptrdiff_t>{kHeight, image.row_stride},
                                        {kWidth, image.pixel_stride},
                                        {3, image.component_stride}}) {
        first -= std::min<ptrdiff_t>(stride, 0) * (count - 1);
    }
    image.pixels = first;
    const uint8_t *from = packed.data();
    for (int64_t y = 0; y < kHeight; ++y) {
        for (int64_t x = 0; x < kWidth; ++x) {
            for (int64_t c = 0; c < kind.components; ++c, from += kind.sample) {
                std::copy_n(
                    from, kind.sample,
                    first + y * image.row_stride + x * image.pixel_stride + c * image.component_stride);
            }
        }
    }
    return result;
}

TEST(Library, GivesTheSameHoweverItIsCalled) {
    for (const Kind &kind : kKinds) {
        Bytes source = Noise(kind);
        const Bytes expected = FilteredByCall(kind, source, Options(3, 1));
        const hymedian_image whole = Packed(kind, &source);
        for (const int32_t threads : {0, 2, 7, 1000}) {
            EXPECT_EQ(FilteredByCall(kind, source, Options(3, threads)), expected) << threads;
        }
        for (const Arrangement &way : kArrangements) {
            const Arranged input = Arrange(kind, way, source);
            Arranged output = Arrange(kind, kArrangements[&way == kArrangements], Bytes(source.size(), 0xA5));
            const hymedian_options options = Options(3);
            ASSERT_EQ(hymedian_filter(&input.image, &output.image, &options), HYMEDIAN_OK) << way.name;
            // What lies between the pixels stays as it was, too.
            EXPECT_EQ(output.bytes, Arrange(kind, kArrangements[&way == kArrangements], expected).bytes)
                << way.name;
        }
        // Parts of a whole.
        Bytes result(source.size());
        constexpr int64_t kPart = 19;
        for (int64_t y = 0; y < kHeight; y += kPart) {
            for (int64_t x = 0; x < kWidth; x += kPart) {
                hymedian_options options = Options(3);
                options.x = x;
                options.y = y;
                hymedian_image part = Packed(kind, &result);
                part.pixels = result.data() + y * part.row_stride + x * part.pixel_stride;
                part.width = std::min(kPart, kWidth - x);
                part.height = std::min(kPart, kHeight - y);
                ASSERT_EQ(hymedian_filter(&whole, &part, &options), HYMEDIAN_OK);
            }
        }
        EXPECT_EQ(result, expected);
    }
}

TEST(Library, StridesMeanNothingWhereThereIsButOne) {
    constexpr ptrdiff_t kFar = std::numeric_limits<ptrdiff_t>::min();
    uint8_t pixel = 7, result = 0;
    const hymedian_image input = {&pixel, 1, 1, 1, HYMEDIAN_UINT8, kFar, kFar, kFar};
    const hymedian_image output = {&result, 1, 1, 1, HYMEDIAN_UINT8, kFar, kFar, kFar};
    const hymedian_options options = Options(1);
    EXPECT_EQ(hymedian_filter(&input, &output, &options), HYMEDIAN_OK);
    EXPECT_EQ(result, 7);
}

TEST(Library, TakesOneRowForAll) {
    const Kind kind = {3, HYMEDIAN_UINT8};
    Bytes row = Noise(kind, kWidth, 1), result(static_cast<size_t>(kWidth * kHeight * 3)), rows;
    hymedian_image input = Packed(kind, &row);
    input.row_stride = 0;
    for (int64_t y = 0; y < kHeight; ++y) {
        rows.insert(rows.end(), row.begin(), row.end());
    }
    const hymedian_image output = Packed(kind, &result);
    const hymedian_options options = Options(4);
    EXPECT_EQ(hymedian_filter(&input, &output, &options), HYMEDIAN_OK);
    EXPECT_EQ(result, FilteredByCall(kind, rows, options));
}

TEST(Library, WhatIsNotFiniteStaysAndIsChosenNowhereElse) {
    constexpr float kOdd[] = {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                              -std::numeric_limits<float>::infinity()};
    for (const int32_t components : {1, 3}) {
        const Kind kind = {components, HYMEDIAN_FLOAT32};
        Bytes source = Noise(kind);
        const auto samples = source.size() / sizeof(float);
        std::mt19937 random(1);
        for (size_t i = 0; i < samples; ++i) {
            // Single ones, a run longer than the filter reaches, and a row of nothing else.
            const size_t pixel = i / static_cast<size_t>(components);
            const size_t y = pixel / kWidth, x = pixel % kWidth;
            if (random() % 20 == 0 || (y % 9 < 5 && x > 20 && x < 50) || y == 30) {
                std::memcpy(&source[4 * i], &kOdd[i % 3], sizeof(float));
            }
        }
        const auto finite = [&](const Pixel &pixel) {
            bool all = true;
            for (size_t c = 0; c < static_cast<size_t>(components); ++c) {
                all &= std::isfinite(SampleAt<float>(pixel, c));
            }
            return all;
        };
        const auto before = PixelsOf(kind, source);
        for (const int32_t radius : {1, 2, 6}) {
            const auto after = PixelsOf(kind, FilteredByCall(kind, source, Options(radius)));
            int changed = 0;
            for (int64_t i = 0; i < kWidth * kHeight; ++i) {
                const Pixel &pixel = after[static_cast<size_t>(i)], &own = before[static_cast<size_t>(i)];
                if (!finite(own) || pixel == own) {
                    ASSERT_EQ(pixel, own) << i;
                    continue;
                }
                ++changed;
                ASSERT_TRUE(finite(pixel)) << i;
                bool near = false;
                for (int64_t dy = -radius; dy <= radius; ++dy) {
                    for (int64_t dx = -radius; dx <= radius; ++dx) {
                        const int64_t y = std::clamp<int64_t>(i / kWidth + dy, 0, kHeight - 1);
                        const int64_t x = std::clamp<int64_t>(i % kWidth + dx, 0, kWidth - 1);
                        near |= before[static_cast<size_t>(y * kWidth + x)] == pixel;
                    }
                }
                ASSERT_TRUE(near) << i;
            }
            EXPECT_GT(changed, 500);
        }
    }
}

TEST(Library, TheNearestInTheRowStandsInForWhatIsNotFinite) {
    const Kind kind = {1, HYMEDIAN_FLOAT32};
    // A speck beside a block of NaNs that is wider than the filter reaches.
    std::vector<float> picture(kWidth * kHeight, 1);
    for (size_t i = 0; i < picture.size(); ++i) {
        picture[i] = i % kWidth < 40 ? std::numeric_limits<float>::quiet_NaN() : picture[i];
    }
    constexpr size_t kSpeck = 30 * kWidth + 40;
    picture[kSpeck] = kLeast;
    Bytes source(picture.size() * sizeof(float));
    std::memcpy(source.data(), picture.data(), source.size());
    EXPECT_EQ(SampleAt<float>(FilteredByCall(kind, source, Options(2)), kSpeck), 1);
}

TEST(Library, FloatsAreComparedBetweenTheirLeastAndGreatest) {
    const Kind kind = {1, HYMEDIAN_FLOAT32};
    Bytes source = Noise(kind);
    const float ends[] = {kLeast - 1, kGreatest + 1, std::numeric_limits<float>::infinity()};
    std::memcpy(source.data(), ends, sizeof ends);
    hymedian_options own = Options(2), told = own;
    own.least = own.greatest = 0;
    told.least = ends[0];
    told.greatest = ends[1];
    EXPECT_EQ(FilteredByCall(kind, source, own), FilteredByCall(kind, source, told));
}

TEST(Library, RefusesWhatIsWrong) {
    struct Call {
        hymedian_image input, output;
        hymedian_options options;
    };
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    constexpr int64_t kHuge = std::numeric_limits<int64_t>::max();
    const struct {
        int status;
        void (*spoil)(Call &);
    } cases[] = {
        {HYMEDIAN_NULL, [](Call &c) { c.input.pixels = nullptr; }},
        {HYMEDIAN_NULL, [](Call &c) { c.output.pixels = nullptr; }},
        {HYMEDIAN_OPTIONS, [](Call &c) { c.options.size = 8; }},
        {HYMEDIAN_RADIUS, [](Call &c) { c.options.radius = 0; }},
        {HYMEDIAN_RADIUS, [](Call &c) { c.options.radius = 7; }},
        {HYMEDIAN_THREADS, [](Call &c) { c.options.threads = -1; }},
        {HYMEDIAN_COMPONENTS, [](Call &c) { c.input.components = c.output.components = 2; }},
        {HYMEDIAN_COMPONENTS, [](Call &c) { c.output.components = 4; }},
        {HYMEDIAN_SAMPLE, [](Call &c) { c.input.sample = 8; }},
        {HYMEDIAN_SIZE, [](Call &c) { c.output.width = 0; }},
        {HYMEDIAN_SIZE, [](Call &c) { c.input.height = -1; }},
        {HYMEDIAN_SIZE,
         [](Call &c) {
             c.input.height = kHuge;
             c.input.row_stride = 0;
             c.options.y = kHuge - kHeight;
         }},
        {HYMEDIAN_STRIDE, [](Call &c) { c.output.row_stride = 0; }},
        {HYMEDIAN_STRIDE, [](Call &c) { c.output.pixel_stride = 2; }},
        {HYMEDIAN_STRIDE, [](Call &c) { c.output.row_stride -= 1; }},
        {HYMEDIAN_STRIDE, [](Call &c) { c.input.row_stride = kHuge / 2; }},
        {HYMEDIAN_STRIDE, [](Call &c) { c.input.row_stride = -(kHuge / kHeight); }},
        {HYMEDIAN_MISMATCH, [](Call &c) { c.output.components = 1; }},
        {HYMEDIAN_MISMATCH, [](Call &c) { c.input.sample = HYMEDIAN_UINT16; }},
        {HYMEDIAN_REGION, [](Call &c) { c.options.x = 1; }},
        {HYMEDIAN_REGION, [](Call &c) { c.options.y = -1; }},
        {HYMEDIAN_REGION, [](Call &c) { c.input.height = kHeight - 1; }},
        {HYMEDIAN_OVERLAP, [](Call &c) { c.input = c.output; }},
        {HYMEDIAN_OVERLAP,
         [](Call &c) {
             c.input.pixels = static_cast<uint8_t *>(c.output.pixels) + c.output.row_stride * kHeight - 1;
         }},
        {HYMEDIAN_RANGE, [](Call &c) { c.options.least = kNaN; }},
        {HYMEDIAN_RANGE, [](Call &c) { c.options.greatest = kLeast - 1; }},
    };
    const Kind kind = {3, HYMEDIAN_UINT8};
    Bytes source = Noise(kind);
    for (const auto &c : cases) {
        Bytes result(2 * source.size(), 0x5A);
        Call call = {Packed(kind, &source), Packed(kind, &result), Options(2)};
        c.spoil(call);
        EXPECT_EQ(hymedian_filter(&call.input, &call.output, &call.options), c.status) << &c - cases;
        EXPECT_EQ(result, Bytes(result.size(), 0x5A)) << &c - cases;
    }
    EXPECT_EQ(hymedian_filter(nullptr, nullptr, nullptr), HYMEDIAN_NULL);
}

TEST(Library, CancelledCallsLeaveTheOutputAlone) {
    for (const Kind &kind : {kKinds[1], kKinds[5]}) {
        Bytes source = Noise(kind, 400, 300);
        const hymedian_image input = Packed(kind, &source, 400, 300);
        struct Asked {
            int times, goOn;
            double done;
        };
        hymedian_options options = Options(1);
        options.least = options.greatest = 0;
        options.progress = [](void *user, double done) {
            auto *asked = static_cast<Asked *>(user);
            EXPECT_GE(done, asked->done);
            asked->done = done;
            return ++asked->times > asked->goOn ? 1 : 0;
        };
        const Bytes untouched(source.size(), 0x5A);
        int status = HYMEDIAN_CANCELLED;
        int goOn = 0;
        for (; status != HYMEDIAN_OK; ++goOn) {
            ASSERT_LT(goOn, 100);
            Bytes result = untouched;
            const hymedian_image output = Packed(kind, &result, 400, 300);
            Asked asked = {0, goOn, 0};
            options.user = &asked;
            status = hymedian_filter(&input, &output, &options);
            ASSERT_EQ(status, asked.times > goOn ? HYMEDIAN_CANCELLED : HYMEDIAN_OK);
            EXPECT_LE(asked.times, goOn + 1);
            EXPECT_EQ(result == untouched, status == HYMEDIAN_CANCELLED) << goOn;
            EXPECT_TRUE(status == HYMEDIAN_CANCELLED || asked.done == 1);
        }
        EXPECT_GT(goOn, 2);
    }
}

}  // namespace
