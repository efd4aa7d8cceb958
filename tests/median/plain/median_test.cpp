#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "median/plain/scheduled_median.h"
#include "median/plain/square_root.h"
#include "median/plain/table_median.h"

namespace {

using Color = std::array<float, 3>;

struct Samples {
    std::vector<float> a, b, c;
};

Samples FromColors(const std::vector<Color> &colors) {
    Samples samples;
    for (const Color &color : colors) {
        samples.a.push_back(color[0]);
        samples.b.push_back(color[1]);
        samples.c.push_back(color[2]);
    }
    return samples;
}

Samples FromGray(const std::vector<float> &gray) {
    return {gray, gray, gray};
}

int32_t TableMedian(const Samples &s) {
    uint32_t table[kSquareRootTableSize];
    build_table(table);
    return returnMedian(static_cast<int32_t>(s.a.size()), s.a.data(), s.b.data(), s.c.data(), table);
}

int32_t ScheduledMedian(const Samples &s) {
    return returnMedianScheduling(static_cast<int32_t>(s.a.size()), s.a.data(), s.b.data(), s.c.data());
}

struct Case {
    Samples samples;
    int32_t median;
};

std::vector<float> Repeated(std::vector<std::pair<int, float>> runs) {
    std::vector<float> values;
    for (const auto &[count, value] : runs) {
        values.insert(values.end(), static_cast<size_t>(count), value);
    }
    return values;
}

TEST(TableMedian, ChoosesByCoarseDistances) {
    const Case cases[] = {
        {FromGray({}), 0},
        {FromGray({7}), 0},
        {FromGray({0, 255}), 0},
        {FromGray({0, 1, 4}), 0},  // sums 7.5, 8.25, 12.75
        {FromGray({0, 13, 27}), 1},
        {FromGray({0, 255, 128}), 2},
        {FromGray({9, 9, 9}), 0},
        {FromGray({5, 9, 9}), 1},
        {FromColors({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}}), 0},
        {FromGray({0, 10, 20, 30}), 1},
        // From five samples on, in blocks seeded by an earlier block.
        {FromGray({10, 20, 30, 40, 50}), 0},
        {FromGray(Repeated({{5, 7}, {1, 8}})), 1},
        {FromGray(Repeated({{5, 10}, {1, 20}, {1, 30}})), 2},
        {FromGray(Repeated({{5, 10}, {1, 20}, {1, 30}, {1, 20}})), 2},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(TableMedian(c.samples), c.median) << "case " << &c - cases;
    }
}

TEST(ScheduledMedian, ChoosesByFineDistances) {
    const Case cases[] = {
        {FromGray({}), 0},
        {FromGray({7}), 0},
        {FromGray({3, 8}), 0},
        {FromGray({0, 0, 9, 9}), 0},
        {FromGray({10, 20, 30, 40}), 1},
        {FromColors({{255, 0, 0}, {0, 255, 0}, {0, 255, 0}, {255, 0, 0}, {0, 0, 255}}), 0},
        {FromGray(Repeated({{11, 0}, {1, 37}, {1, 38}, {12, 108}})), 11},
        // The rounding of each operation and the order of the additions decide.
        {FromColors({{130, 133, 132}, {136, 130, 129}, {138, 136, 136}, {129, 134, 130}, {137, 129, 131}}),
         0},
        {FromColors({{79, 88, 82}, {84, 78, 87}, {85, 77, 79}, {78, 83, 88}, {86, 87, 78}}), 1},
        {FromColors({{209, 209, 216}, {209, 215, 213}, {210, 207, 212}, {215, 213, 205}, {213, 208, 214}}),
         2},
        {FromColors({{119, 128, 128}, {122, 126, 124}, {125, 119, 122}, {126, 125, 127}, {129, 129, 125}}),
         1},
        {FromGray(std::vector<float>(25, 4)), 0},
        {FromGray(std::vector<float>(26, 4)), 0},
    };
    // Twice, so that every size follows another size and itself.
    for (int round = 0; round < 2; ++round) {
        for (const Case &c : cases) {
            EXPECT_EQ(ScheduledMedian(c.samples), c.median) << "case " << &c - cases;
        }
    }
}

TEST(ScheduledMedian, DistancesAreKnownToTheBit) {
    const std::pair<float, uint32_t> cases[] = {
        {0.0f, 0x00000000}, {1.0f, 0x3F7F910F}, {2.0f, 0x3FB4F95E},
        {3.0f, 0x3FDD825A}, {4.0f, 0x3FFF910F}, {195075.0f, 0x43DCA070},
    };
    for (const auto &[q, bits] : cases) {
        EXPECT_EQ(std::bit_cast<uint32_t>(DistanceFromSeed(q, ReciprocalRootSeed(q))), bits) << q;
    }
}

}  // namespace
