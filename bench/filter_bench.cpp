// Megapixels per second of the filter, by radius and pixel layout, over noise.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <random>
#include <vector>

#include "median/hybrid_filter.h"

namespace {

constexpr int16_t kSide = 256;

NamedImage *MakeNoise(int16_t bytesPerPixel) {
    NamedImage *image = nullptr;
    if (MakeTempImage(kSide, kSide, bytesPerPixel, &image) != noErr) {
        std::abort();
    }
    const bool deep = bytesPerPixel % 2 == 0;
    std::mt19937 random(1);
    std::vector<uint8_t> row(static_cast<size_t>(kSide * bytesPerPixel));
    for (int32_t y = 0; y < kSide; ++y) {
        for (size_t i = 0; i < row.size(); ++i) {
            // The high byte of a 16-bit sample stays within the range of 0 to 32768.
            row[i] = static_cast<uint8_t>(deep && i % 2 == 1 ? random() & 0x7F : random());
        }
        PutLine(image, 0, y, static_cast<int32_t>(row.size()), row.data());
    }
    return image;
}

void Filter(benchmark::State &state, int16_t bytesPerPixel) {
    NamedImage *image = MakeNoise(bytesPerPixel);
    const auto radius = static_cast<float>(state.range(0));
    for (auto iteration : state) {
        (void)iteration;
        NewHyMedian(image, radius, false, nullptr, 1, 2, 3);
    }
    TossTempImage(image);
    state.counters["MP/s"] =
        benchmark::Counter(double{kSide} * kSide / 1e6, benchmark::Counter::kIsIterationInvariantRate);
}

BENCHMARK_CAPTURE(Filter, gray8, 1)->DenseRange(1, 6)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Filter, gray16, 2)->DenseRange(1, 6)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Filter, rgb8, 3)->DenseRange(1, 6)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Filter, rgb16, 6)->DenseRange(1, 6)->Unit(benchmark::kMillisecond);

}  // namespace
