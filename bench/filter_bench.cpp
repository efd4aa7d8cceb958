// Megapixels per second of the filter over noise, by kernel, radius and pixel layout; and, in the same run,
// of the plain routines that define it. scripts/performance-table.sh turns these into tables.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "median/hybrid_filter.h"
#include "median/kernel/hybrid_kernel.h"
#include "median/plain/plain_filter.h"

namespace {

constexpr int16_t kWidth = 3000;
constexpr int16_t kHeight = 64;
// The plain routines are so slow that this is enough.
constexpr int16_t kPlainWidth = 256;

struct Layout {
    const char *name;
    PixelFormat format;
    int16_t bytesPerPixel;
};

constexpr Layout kLayouts[] = {
    {"gray8", PixelFormat::gray8, 1},
    {"gray16", PixelFormat::gray16, 2},
    {"rgb8", PixelFormat::rgb8, 3},
    {"rgb16", PixelFormat::rgb16, 6},
};

std::vector<uint8_t> Noise(int16_t width, int16_t bytesPerPixel) {
    std::vector<uint8_t> bytes(static_cast<size_t>(width * kHeight * bytesPerPixel));
    std::mt19937 random(1);
    const bool deep = bytesPerPixel % 2 == 0;
    for (size_t i = 0; i < bytes.size(); ++i) {
        // The high byte of a 16-bit sample stays within the range of 0 to 32768.
        bytes[i] = static_cast<uint8_t>(deep && i % 2 == 1 ? random() & 0x7F : random());
    }
    return bytes;
}

void Count(benchmark::State &state, int16_t width) {
    const double pixels = static_cast<double>(width) * kHeight * static_cast<double>(state.iterations());
    state.counters["MP/s"] = benchmark::Counter(pixels / 1e6, benchmark::Counter::kIsRate);
}

void Plain(benchmark::State &state, Layout layout, int radius) {
    const std::vector<uint8_t> noise = Noise(kPlainWidth, layout.bytesPerPixel);
    std::vector<uint8_t> filtered(noise.size());
    for (auto iteration : state) {
        (void)iteration;
        FilterPlainly({layout.format, kPlainWidth, kHeight, noise.data()}, radius, filtered.data());
    }
    Count(state, kPlainWidth);
}

// Of repetitions; of speeds, what the machine does while nothing disturbs it.
double Largest(const std::vector<double> &values) {
    return *std::max_element(values.begin(), values.end());
}

// Measures NewHyMedian, including its line access.
void Kernel(benchmark::State &state, const HybridKernel *kernel, Layout layout, int radius) {
    setenv("HYMEDIAN_KERNEL", kernel->name, 1);
    NamedImage *image = nullptr;
    if (MakeTempImage(kWidth, kHeight, layout.bytesPerPixel, &image) != noErr) {
        state.SkipWithError("no memory for the image");
        return;
    }
    const std::vector<uint8_t> noise = Noise(kWidth, layout.bytesPerPixel);
    const int32_t rowBytes = kWidth * layout.bytesPerPixel;
    for (auto iteration : state) {
        (void)iteration;
        state.PauseTiming();
        for (int32_t y = 0; y < kHeight; ++y) {
            PutLine(image, 0, y, rowBytes, noise.data() + int64_t{y} * rowBytes);
        }
        state.ResumeTiming();
        NewHyMedian(image, static_cast<float>(radius), false, nullptr, 1, 2, 3);
    }
    TossTempImage(image);
    Count(state, kWidth);
}

}  // namespace

int main(int count, char **arguments) {
    for (const Layout &layout : kLayouts) {
        for (int radius = 1; radius <= kHybridMaxRadius; ++radius) {
            const std::string place = std::string(layout.name) + "/" + std::to_string(radius);
            benchmark::RegisterBenchmark(("plain/" + place).c_str(), Plain, layout, radius)
                ->Unit(benchmark::kMillisecond)
                ->ComputeStatistics("best", Largest);
            for (const auto *kernel = UsableHybridKernels(); *kernel != nullptr; ++kernel) {
                benchmark::RegisterBenchmark(((*kernel)->name + ("/" + place)).c_str(), Kernel, *kernel,
                                             layout, radius)
                    ->Unit(benchmark::kMillisecond)
                    ->ComputeStatistics("best", Largest);
            }
        }
    }
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments)) {
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
