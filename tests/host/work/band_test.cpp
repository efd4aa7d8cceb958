// Bands of a picture: where they lie, and in which order they are read, filtered and written.
#include <random>
#include <thread>

#include "host/filter/tiles.h"
#include "host/work/band_plan.h"
#include "host/work/band_queue.h"
#include "tests/host/host_fixture.h"

namespace {

constexpr int64_t kMegabyte = 1'000'000;

DocumentShape Rgb(int32_t width, int32_t height) {
    DocumentShape shape;
    shape.depth = 8;
    shape.planes = shape.colorPlanes = 3;
    shape.width = width;
    shape.height = height;
    return shape;
}

TEST(BandPlan, CoversEveryRowOnceInBoundedMemory) {
    const struct {
        int32_t width, height, jobs;
        Store store;
        int64_t megabytes;  // of one block
    } cases[] = {
        {1, 1, 1, Store::slots, 1},
        {100, 10'000'000, 1, Store::slots, 26},
        {31'623, 31'623, 2, Store::slots, 84},
        {31'623, 31'623, 7, Store::slots, 230},
        {2'000'000, 4000, 1, Store::slots, 2 * 28 * 6},
        {2000, 2000, 7, Store::slots, 12},
        {2000, 20'000, 2, Store::whole, 120},
    };
    for (const auto &test : cases) {
        SCOPED_TRACE(testing::Message() << test.width << " x " << test.height << ", " << test.jobs);
        DocumentShape shape = Rgb(test.width, test.height);
        const BandPlan plan = PlanBands(shape, test.jobs, test.store);
        int32_t row = 0;
        for (size_t i = 0; i < plan.bands.size(); ++i) {
            const Band &band = plan.bands[i];
            ASSERT_EQ(band.top, row);
            ASSERT_GT(band.bottom, band.top);
            row = band.bottom;
            ASSERT_EQ(band.frameTop, std::max(band.top - kFrameMargin, 0));
            ASSERT_EQ(band.frameBottom, std::min(band.bottom + kFrameMargin, test.height));
            const int32_t storeEnd = StoreRow(plan, i) + band.frameBottom - band.frameTop;
            ASSERT_LE(storeEnd, plan.storeRows);
            // Bands that are in memory together do not overlap, or hold the same rows in the same place.
            if (plan.slots > 1 && i > 0 && i % plan.slots != 0) {
                ASSERT_EQ(StoreRow(plan, i) - StoreRow(plan, i - 1) >=
                              plan.bands[i - 1].frameBottom - plan.bands[i - 1].frameTop,
                          !plan.whole);
            }
        }
        EXPECT_EQ(row, test.height);
        shape.height = plan.storeRows;
        EXPECT_LE(PixelBytes(shape), test.megabytes * kMegabyte);
    }
}

TEST(BandQueue, KeepsTheOrderAndTheNumberInMemory) {
    constexpr size_t kBands = 200;
    constexpr size_t kSlots = 3;
    BandQueue queue;
    queue.slots = kSlots;
    queue.filtered.resize(kBands);
    std::array<int, kSlots> slots = {};
    std::thread reading([&] {
        for (size_t i = 0; i < kBands && WaitForSlot(&queue, i); ++i) {
            slots.at(i % kSlots) = static_cast<int>(i);
            MarkRead(&queue, i);
        }
    });
    std::vector<int> taken;
    std::thread writing([&] {
        for (size_t i = 0; i < kBands && WaitUntilFiltered(&queue, i); ++i) {
            taken.push_back(slots.at(i % kSlots));
            MarkWritten(&queue, i);
        }
    });
    // Out of order, as workers finish.
    std::mt19937 generator(5);
    std::vector<size_t> inWork;
    for (size_t next = 0; next < kBands || !inWork.empty();) {
        while (next < kBands && inWork.size() < kSlots && IsRead(&queue, next)) {
            inWork.push_back(next++);
        }
        if (!inWork.empty()) {
            const auto picked = static_cast<ptrdiff_t>(generator() % inWork.size());
            MarkFiltered(&queue, inWork[static_cast<size_t>(picked)]);
            inWork.erase(inWork.begin() + picked);
        }
    }
    reading.join();
    writing.join();
    ASSERT_EQ(taken.size(), kBands);
    for (size_t i = 0; i < kBands; ++i) {
        ASSERT_EQ(taken[i], static_cast<int>(i));
    }
}

TEST(BandQueue, StopsAllThatWaitAndKeepsTheFirstFailure) {
    BandQueue queue;
    queue.slots = 1;
    queue.filtered.resize(2);
    std::vector<std::thread> waiting;
    waiting.emplace_back([&] { EXPECT_FALSE(WaitForSlot(&queue, 1)); });
    waiting.emplace_back([&] { EXPECT_FALSE(WaitUntilFiltered(&queue, 0)); });
    const MaybeFailure cancel = Interruption("a.png");
    EXPECT_FALSE(WaitUntilRead(&queue, 0, [&] { return cancel; }));
    StopBands(&queue, FileFailure("a.png", "cannot be written"));
    for (std::thread &thread : waiting) {
        thread.join();
    }
    EXPECT_EQ(FailureOf(&queue)->status, kExitInterrupted);
}

}  // namespace
