// Where a kernel's time goes: ticks of the time-stamp counter a pixel, stage by stage and by radius, over
// noise of 8-bit RGB. The least over all lines and tiles, so that other work on the machine does not count.
// In brackets, what the stage's arithmetic alone takes on this processor, over data in the first-level cache.
//
// Compiled for one instruction set, as the kernels are.
#include <x86intrin.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <random>
#include <vector>

#include "median/kernel/hybrid_impl.h"

namespace HYBRID_VARIANT {
namespace {

using Format = Rgb8;
constexpr int kWidth = 1920;
constexpr int kLines = 24;
constexpr int kRepetitions = 40;
constexpr int kStages = 5;

double Now() {
    unsigned processor;
    return static_cast<double>(__rdtscp(&processor));
}

// The least time of work that is done many times.
template <class Work>
double LeastTime(Work work) {
    double least = std::numeric_limits<double>::infinity();
    for (int i = 0; i < 2000; ++i) {
        const double start = Now();
        work();
        least = std::min(least, Now() - start);
    }
    return least;
}

// The same value, of which the compiler knows nothing, so that it computes what depends on it every time.
Float Hidden(Float value) {
#if HYBRID_LANES == 16
    asm volatile("" : "+v"(value));
#else
    asm volatile("" : "+x"(value));
#endif
    return value;
}

// Ticks a vector.
double AdditionTime() {
    constexpr int kSums = 10;
    constexpr int kRounds = 200;
    const double time = LeastTime([] {
        Float sums[kSums] = {};
        const Float term = Hidden(Float{});
        for (int round = 0; round < kRounds; ++round) {
#pragma GCC unroll 16
            for (Float &sum : sums) {
                sum = Hidden(sum + term);
            }
        }
    });
    return time / (kSums * kRounds);
}

double DistanceTime() {
    constexpr int kVectors = 24;
    constexpr int kRounds = 50;
    alignas(64) static PointLine<Format, kVectors> anchors, others;
    alignas(64) static Float distances[kVectors];
    const double time = LeastTime([&] {
        for (int round = 0; round < kRounds; ++round) {
            for (int x = 0; x < kVectors; ++x) {
                distances[x] = DoubledDistance(
                    Format::SquaredDistance(LoadPoint<Format>(anchors, x), LoadPoint<Format>(others, x)));
            }
            asm volatile("" : : "r"(anchors), "r"(others), "r"(distances) : "memory");
        }
    });
    return time / (kVectors * kRounds);
}

// The least time of each stage over a tile's output lines.
struct LeastTimes {
    double last = Now();
    double least[kStages];
    int leadingLines;

    explicit LeastTimes(int leading) : leadingLines(leading) {
        std::fill_n(least, kStages, std::numeric_limits<double>::infinity());
    }

    void operator()(Stage stage) {
        // Before the first output line, not all distances are computed.
        if (leadingLines <= 0 || stage == Stage::reading) {
            double &time = least[static_cast<int>(stage)];
            time = std::min(time, Now() - last);
        }
        leadingLines -= stage == Stage::distances;
        last = Now();
    }
};

template <int R>
void Measure(double additionTime, double distanceTime) {
    constexpr int kRowBytes = kWidth * Format::kSamplesPerPixel;
    std::vector<uint8_t> source(static_cast<size_t>(kRowBytes) * (kLines + 2 * R)), target(source.size());
    std::mt19937 random(1);
    std::generate(source.begin(), source.end(), [&] { return static_cast<uint8_t>(random()); });
    std::vector<const void *> sourceLines;
    std::vector<void *> targetLines;
    for (size_t y = 0; y < kLines + 2 * R; ++y) {
        sourceLines.push_back(source.data() + y * kRowBytes);
        targetLines.push_back(target.data() + y * kRowBytes);
    }
    const auto tile = std::make_unique<Tile<Format, R>>();
    const HybridBlock block = {PixelFormat::rgb8,  R,      kWidth, kLines, 0, kWidth, sourceLines.data(),
                               targetLines.data(), nullptr};

    constexpr int kPixels = kTilePixels[R - 1];
    double least[kStages];
    std::fill_n(least, kStages, std::numeric_limits<double>::infinity());
    for (int i = 0; i < kRepetitions; ++i) {
        for (int column = 0; column + kPixels <= kWidth; column += kPixels) {
            LeastTimes times(2 * R);
            FilterTile(block, column, kPixels, *tile, times);
            std::transform(least, least + kStages, times.least, least,
                           [](double a, double b) { return std::min(a, b); });
        }
    }

    const double additions = kSets<R> * kSamples<R> * (kSamples<R> - 2);
    const double chosenDistances = R == 1 ? 3 : 10;
    const double bounds[kStages] = {0, kPlan<R>.count * distanceTime, additions * additionTime,
                                    chosenDistances * distanceTime, 0};
    std::printf("| %d |", R);
    double sum = 0;
    for (int stage = 0; stage < kStages; ++stage) {
        sum += least[stage] / kPixels;
        std::printf(" %.1f", least[stage] / kPixels);
        if (bounds[stage] > 0) {
            std::printf(" (%.1f)", bounds[stage] / kLanes);
        }
        std::printf(" |");
    }
    std::printf(" %.1f |\n", sum);
}

template <int... R>
void MeasureAll(std::integer_sequence<int, R...>) {
    const double additionTime = AdditionTime();
    const double distanceTime = DistanceTime();
    std::printf(
        "| radius | reading | distances | medians | choice | writing | all "
        "|\n|---|---|---|---|---|---|---|\n");
    (Measure<R + 1>(additionTime, distanceTime), ...);
}

}  // namespace
}  // namespace HYBRID_VARIANT

int main() {
    HYBRID_VARIANT::MeasureAll(std::make_integer_sequence<int, HYBRID_VARIANT::kMaxRadius>{});
    return 0;
}
