#include "median/hybrid_filter.h"

#include <algorithm>

#include "tests/support/filtered_image.h"
#include "tests/support/scratch_folder.h"

namespace {

class HybridFilter : public ScratchFolder {};

TEST_F(HybridFilter, GivesKnownChecksums) {
    const struct {
        int16_t bytesPerPixel;
        uint32_t input;
        uint32_t filtered[6];
    } cases[] = {
        {3, 0x98cad251, {0xabb7ddfd, 0x47d1a389, 0x28e011ac, 0x5af4c61c, 0x0c798913, 0x8cefe138}},
        {1, 0xcc80c1fe, {0xd99dfa7f, 0xd90289c1, 0x058bbeb2, 0xb518600c, 0x27992a78, 0x266f0556}},
        {2, 0xaf729009, {0x84b5e5bd, 0x758af63b, 0x824d03e4, 0x941820a1, 0x84e7f3d9, 0xa1e73dd5}},
    };
    for (const auto &c : cases) {
        const TestImage image = PatternImage(c.bytesPerPixel);
        ASSERT_EQ(Crc32(image.bytes), c.input);
        for (int radius = 1; radius <= 6; ++radius) {
            EXPECT_EQ(Crc32(Filtered(image, static_cast<float>(radius))), c.filtered[radius - 1])
                << c.bytesPerPixel << " bytes per pixel, radius " << radius;
        }
    }
}

TEST_F(HybridFilter, GivesKnownPixels) {
    const TestImage image = {5, 5, 1, {12, 200, 7,   34, 90, 66, 41, 150, 8,   255, 3,   77, 128,
                                       60, 19,  240, 14, 99, 33, 71, 5,   180, 52,  210, 26}};
    const std::vector<uint8_t> radius1 = {12, 66, 34, 34, 90, 66, 41, 77, 19, 90, 41, 77, 99,
                                          60, 33, 14, 14, 99, 33, 60, 5,  99, 52, 71, 26};
    const std::vector<uint8_t> radius2 = {12, 66, 19, 34, 90, 66, 41, 77, 41,  90, 12, 77, 128,
                                          60, 33, 77, 14, 77, 33, 71, 5,  128, 52, 71, 26};
    EXPECT_EQ(Filtered(image, 1), radius1);
    EXPECT_EQ(Filtered(image, 2), radius2);
}

TEST_F(HybridFilter, RadiusCountsWholePixelsUpToSix) {
    const TestImage image = PatternImage(3);
    const std::pair<float, float> alike[] = {{4.9f, 4}, {7, 6}, {1e30f, 6}, {1.999f, 1}};
    for (const auto &[radius, whole] : alike) {
        EXPECT_EQ(Filtered(image, radius), Filtered(image, whole)) << radius;
    }
    for (const float radius : {0.99f, 0.0f, -3.0f, std::numeric_limits<float>::quiet_NaN()}) {
        EXPECT_EQ(Filtered(image, radius), image.bytes) << radius;
    }
}

TEST_F(HybridFilter, KeepsLinesAndRemovesSpecks) {
    const auto drawn = [](auto isWhite) {
        TestImage image = {13, 13, 1, std::vector<uint8_t>(13 * 13, 40)};
        for (int y = 0; y < 13; ++y) {
            for (int x = 0; x < 13; ++x) {
                if (isWhite(x, y)) {
                    image.bytes[static_cast<size_t>(13 * y + x)] = 220;
                }
            }
        }
        return image;
    };
    const TestImage lines[] = {
        drawn([](int, int y) { return y == 6; }),
        drawn([](int x, int) { return x == 6; }),
        drawn([](int x, int y) { return x == y; }),
        drawn([](int x, int y) { return x + y == 12; }),
        RandomImage(1, 13, 3, 1),
        RandomImage(13, 1, 6, 2),
        RandomImage(1, 1, 2, 3),
    };
    const TestImage speck = drawn([](int x, int y) { return x == 6 && y == 6; });
    const TestImage slant = drawn([](int x, int y) { return x == 2 * y - 6; });
    const std::vector<uint8_t> flat(13 * 13, 40);
    for (int radius = 1; radius <= 6; ++radius) {
        for (const TestImage &line : lines) {
            EXPECT_EQ(Filtered(line, static_cast<float>(radius)), line.bytes)
                << "line " << &line - lines << ", radius " << radius;
        }
        EXPECT_EQ(Filtered(speck, static_cast<float>(radius)), flat) << radius;
        EXPECT_NE(Filtered(slant, static_cast<float>(radius)), slant.bytes) << radius;
    }
}

TEST_F(HybridFilter, LeavesOtherLayoutsAlone) {
    for (const int16_t bytesPerPixel : {int16_t{4}, int16_t{5}, int16_t{8}}) {
        const TestImage image = RandomImage(9, 8, bytesPerPixel, 5);
        EXPECT_EQ(Filtered(image, 2), image.bytes) << bytesPerPixel;
    }
    EXPECT_EQ(NewHyMedian(nullptr, 2, false, nullptr, 1, 2, 3), noErr);
}

TEST_F(HybridFilter, GivesTheSameFromDisk) {
    for (const int16_t bytesPerPixel : {int16_t{3}, int16_t{2}}) {
        const TestImage source = RandomImage(400, 60, bytesPerPixel, 7);
        const std::vector<uint8_t> inMemory = Filtered(source, 2);
        faults::RefuseTemporaryMemory(true);
        NamedImage *image = MakeFrom(source);
        faults::RefuseTemporaryMemory(false);
        ASSERT_TRUE(image->onDisk);
        EXPECT_EQ(NewHyMedian(image, 2, false, nullptr, 1, 2, 3), noErr);
        EXPECT_EQ(BytesOf(image), inMemory);
        TossImage(image);
        EXPECT_EQ(FileCount(), 0u);
    }
}

TEST_F(HybridFilter, FailsWithoutMemoryAndLeavesTheImage) {
    const TestImage source = PatternImage(3);
    for (int64_t n = 1; n <= 2; ++n) {
        NamedImage *image = MakeFrom(source);
        faults::FailAllocation(n);
        EXPECT_EQ(NewHyMedian(image, 2, false, nullptr, 1, 2, 3), memFullErr);
        EXPECT_EQ(BytesOf(image), source.bytes);
        TossImage(image);
    }
}

// The progress that the host saw, and when it asks to cancel.
struct Listener {
    std::vector<std::pair<int32_t, int32_t>> progress;
    size_t cancelAfter = SIZE_MAX;
};
Listener listener;

TEST_F(HybridFilter, TellsAndAsksOncePerStepAndStopsAtOnce) {
    FilterRecord record = {};
    record.progressProc = [](int32_t done, int32_t total) { listener.progress.emplace_back(done, total); };
    record.abortProc = []() -> Boolean { return listener.progress.size() > listener.cancelAfter; };
    RunContext context = {};
    context.filterRecord = &record;
    const TestImage source = RandomImage(11, 14, 3, 8);
    const std::vector<uint8_t> filtered = Filtered(source, 3);

    for (size_t steps = 0; steps <= 26; ++steps) {
        listener = {{}, steps};
        NamedImage *image = MakeFrom(source);
        EXPECT_EQ(NewHyMedian(image, 3, true, &context, 1, 2, 3), steps < 26 ? userCanceledErr : noErr);
        // From step 12 on, each step writes a line; the rest is unchanged.
        std::vector<uint8_t> expected = source.bytes;
        const auto lines = static_cast<int64_t>(steps < 12 ? 0 : steps - 12);
        std::copy_n(filtered.begin(), lines * source.RowBytes(), expected.begin());
        EXPECT_EQ(BytesOf(image), expected) << "cancelled after step " << steps;
        TossImage(image);
    }
    ASSERT_EQ(listener.progress.size(), 26u);
    for (int32_t t = 0; t < 26; ++t) {
        EXPECT_EQ(listener.progress[static_cast<size_t>(t)], std::pair(100 + 100 * t / 26, 300));
    }
}

}  // namespace
