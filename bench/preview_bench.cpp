// Milliseconds from a click in the radius dialog to the new preview, at the preview's size and the largest
// radius.
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <random>
#include <vector>

#include "dialog/preview.h"

namespace {

constexpr Rect kFrame = {0, 0, 240, 320};  // as large as the dialog's preview item
constexpr int16_t kWidth = 1000;
constexpr int16_t kHeight = 800;

NamedImage *MakeNoise() {
    NamedImage *image = nullptr;
    if (MakeImage(kWidth, kHeight, 3, &image) != noErr) {
        std::abort();
    }
    std::mt19937 random(1);
    std::vector<uint8_t> row(size_t{3} * kWidth);
    for (int32_t y = 0; y < kHeight; ++y) {
        for (uint8_t &sample : row) {
            sample = static_cast<uint8_t>(random());
        }
        PutLine(image, 0, y, static_cast<int32_t>(row.size()), row.data());
    }
    return image;
}

void RebuildPreview(benchmark::State &state) {
    NamedImage *image = MakeNoise();
    const RunContext context = {};
    Preview preview = MakePreview(image, &context, kFrame);
    MoveVisible(&preview, kWidth / 2, kHeight / 2);
    for (auto iteration : state) {
        (void)iteration;
        BuildPreview(preview, true, 6);
    }
    DisposeGWorld(preview.picture);
    TossTempImage(preview.work);
    TossImage(image);
}

BENCHMARK(RebuildPreview)->Unit(benchmark::kMillisecond);

}  // namespace
