// Megapixels per second of the library's call over noise, by kind of samples and number of threads.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "median/library/hymedian.h"

namespace {

constexpr int64_t kWidth = 4000, kHeight = 3000;

struct Kind {
    const char *name;
    int32_t components;
    int32_t sample;
};

constexpr Kind kKinds[] = {{"rgb8", 3, HYMEDIAN_UINT8},        {"gray8", 1, HYMEDIAN_UINT8},
                           {"rgb16", 3, HYMEDIAN_UINT16},      {"gray16", 1, HYMEDIAN_UINT16},
                           {"rgb float", 3, HYMEDIAN_FLOAT32}, {"gray float", 1, HYMEDIAN_FLOAT32}};

std::vector<uint8_t> Noise(const Kind &kind) {
    std::mt19937 random(1);
    std::vector<uint8_t> bytes(static_cast<size_t>(kWidth * kHeight * kind.components * kind.sample));
    for (size_t i = 0; i < bytes.size(); i += 4) {
        const auto value = static_cast<uint32_t>(random());
        const float real = static_cast<float>(value) / 4294967296.0f;
        std::memcpy(&bytes[i], kind.sample == HYMEDIAN_FLOAT32 ? static_cast<const void *>(&real) : &value,
                    4);
    }
    return bytes;
}

void Call(benchmark::State &state, Kind kind, int32_t radius, int32_t threads) {
    std::vector<uint8_t> noise = Noise(kind), filtered(noise.size());
    const int64_t pixel = int64_t{kind.components} * kind.sample;
    const auto image = [&](std::vector<uint8_t> *bytes) {
        return hymedian_image{bytes->data(), kWidth,         kHeight, kind.components,
                              kind.sample,   kWidth * pixel, pixel,   kind.sample};
    };
    const hymedian_image input = image(&noise), output = image(&filtered);
    hymedian_options options = {};
    options.size = sizeof options;
    options.radius = radius;
    options.threads = threads;
    options.greatest = 1;
    for (auto iteration : state) {
        (void)iteration;
        if (hymedian_filter(&input, &output, &options) != HYMEDIAN_OK) {
            state.SkipWithError("the call failed");
            return;
        }
    }
    state.counters["MP/s"] = benchmark::Counter(
        static_cast<double>(kWidth * kHeight * state.iterations()) / 1e6, benchmark::Counter::kIsRate);
}

}  // namespace

int main(int count, char **arguments) {
    for (const Kind &kind : kKinds) {
        for (int32_t radius = 1; radius <= HYMEDIAN_MAX_RADIUS; ++radius) {
            for (const int32_t threads : {1, 2}) {
                const std::string name =
                    std::string(kind.name) + "/" + std::to_string(radius) + "/" + std::to_string(threads);
                benchmark::RegisterBenchmark(name.c_str(), Call, kind, radius, threads)
                    ->Unit(benchmark::kMillisecond)
                    ->UseRealTime();
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
