// What it costs to put original pixels back. `restore_bench RADIUS` prints rows of a Markdown table: the kind
// of document; nanoseconds of processor time per pixel for filtering through the plug-in's entry point, and
// for finding the originals; the latter as a part of the former; the part of the pixels that were found in
// the centre. Noise of 3000 x 400 pixels, the best of five runs; the last document has flat areas.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "host/document/original_pixels.h"
#include "host/filter/filter_run.h"
#include "host/filter/plugin.h"
#include "photoshop/image_modes.h"
#include "platform/native_paths.h"

namespace {

constexpr int kRounds = 5;
constexpr int32_t kWidth = 3000;
constexpr int32_t kHeight = 400;

// Of processor time.
double NanosecondsPerPixel(std::clock_t start) {
    return 1e9 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC / (kWidth * kHeight);
}

struct Kind {
    const char *name;
    int16_t mode;
    int32_t depth, planes;
    int32_t flat;  // the side of areas of one colour, in pixels
};

constexpr Kind kKinds[] = {
    {"grey 16", plugInModeGray16, 16, 1, 1},  {"RGB 16", plugInModeRGB48, 16, 3, 1},
    {"Lab 8", plugInModeLabColor, 8, 3, 1},   {"Lab 16", plugInModeLab48, 16, 3, 1},
    {"CMYK 8", plugInModeCMYKColor, 8, 4, 1}, {"CMYK 16", plugInModeCMYK64, 16, 4, 1},
    {"RGB 32", plugInModeRGB96, 32, 3, 1},    {"RGB 16, flat", plugInModeRGB48, 16, 3, 8},
};

uint32_t Mixed(uint32_t number) {
    for (int i = 0; i < 3; ++i) {
        number = (number ^ number >> 16) * 0x45D9F3BU;
    }
    return number ^ number >> 16;
}

Document MakeNoise(const Kind &kind) {
    Document document;
    document.imageMode = kind.mode;
    document.depth = kind.depth;
    document.colorPlanes = document.planes = kind.planes;
    document.width = kWidth;
    document.height = kHeight;
    if (!MapPixels(Sharing::none, &document)) {
        std::exit(1);
    }
    const auto bytes = static_cast<int64_t>(SampleBytes(document));
    for (int64_t i = 0; i < PixelBytes(document) / bytes; ++i) {
        const int64_t pixel = i / kind.planes;
        const int64_t area = pixel / kWidth / kind.flat * kWidth + pixel % kWidth / kind.flat;
        const uint32_t bits = Mixed(static_cast<uint32_t>(area * kind.planes + i % kind.planes));
        const float fraction = static_cast<float>(bits >> 8) / 16777216.0f;
        std::memcpy(document.source.get() + i * bytes,
                    kind.depth == 32 ? static_cast<const void *>(&fraction) : &bits,
                    static_cast<size_t>(bytes));
    }
    return document;
}

double PartInPlace(const Document &document) {
    const auto pixelBytes = static_cast<size_t>(PixelBytes(document) / (int64_t{kWidth} * kHeight));
    int64_t count = 0;
    for (size_t i = 0; i < static_cast<size_t>(PixelBytes(document)); i += pixelBytes) {
        count += std::memcmp(&document.source[i], &document.destination[i], pixelBytes) == 0;
    }
    return double{1} * static_cast<double>(count) / (kWidth * kHeight);
}

void Measure(const Kind &kind, int32_t radius, Module *module) {
    Document document = MakeNoise(kind);
    const VRect whole = WholeRect(document);
    double filtering = 1e9;
    double restoring = 1e9;
    for (int round = 0; round < kRounds; ++round) {
        ResetDestination(&document, whole);
        FilterOrders orders;
        orders.action.items.push_back({.key = kRadiusKey, .type = typeFloat, .number = double{1} * radius});
        std::clock_t start = std::clock();
        if (RunFilter({module, &document, orders, true, {}}).result != noErr) {
            std::exit(1);
        }
        filtering = std::min(filtering, NanosecondsPerPixel(start));
        start = std::clock();
        RestoreOriginals(
            {whole, whole, radius}, [] { return false; }, &document);
        restoring = std::min(restoring, NanosecondsPerPixel(start));
    }
    std::printf("| %s | %.1f | %.1f | %.0f %% | %.0f %% |\n", kind.name, filtering, restoring,
                restoring / filtering * 100, PartInPlace(document) * 100);
}

}  // namespace

int main(int argc, char **argv) {
    const int32_t radius = argc == 2 ? static_cast<int32_t>(std::strtol(argv[1], nullptr, 10)) : 0;
    if (radius < kMinRadius || radius > kMaxPlayedRadius) {
        std::fprintf(stderr, "usage: restore_bench RADIUS, from 1 to 4\n");
        return 2;
    }
    MakePreferencesFolder();
    Plugin plugin;
    if (const MaybeFailure failure = OpenPlugin(DefaultPluginFolder(), &plugin)) {
        Tell(*failure);
        return 1;
    }
    for (const Kind &kind : kKinds) {
        Measure(kind, radius, &plugin.module);
    }
    return 0;
}
