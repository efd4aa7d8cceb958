#include "samples/noise.h"

#include <algorithm>

namespace {

constexpr uint64_t kSeed = 0x9E3779B97F4A7C15;  // arbitrary, but not 0; 2^64 over the golden ratio
// Chosen so that both kinds of noise are plain to see.
constexpr uint32_t kImpulsesPerMille = 60;
// Four uniform numbers from 0 to kGrain - 1 add up to a bell curve with a standard deviation of about 5.2.
constexpr uint32_t kGrain = 9;
constexpr int kGrainTerms = 4;
constexpr int kGrainMean = kGrainTerms * (int{kGrain} - 1) / 2;

// xorshift64*, since the standard library's distributions differ between machines.
struct Generator {
    uint64_t state = kSeed;
};

// Returns 0 to limit - 1.
uint32_t Next(Generator *generator, uint32_t limit) {
    uint64_t &state = generator->state;
    state ^= state >> 12;
    state ^= state << 25;
    state ^= state >> 27;
    return static_cast<uint32_t>((state * 0x2545F4914F6CDD1D) >> 33) % limit;
}

uint8_t WithGrain(uint8_t sample, Generator *generator) {
    int sum = sample - kGrainMean;
    for (int i = 0; i < kGrainTerms; ++i) {
        sum += static_cast<int>(Next(generator, kGrain));
    }
    return static_cast<uint8_t>(std::clamp(sum, 0, 255));
}

uint8_t RandomSample(Generator *generator) {
    return static_cast<uint8_t>(Next(generator, 256));
}

}  // namespace

PictureRGB AddNoise(PictureRGB picture) {
    Generator generator;
    for (Pixel &pixel : picture.pixels) {
        const bool impulse = Next(&generator, 1000) < kImpulsesPerMille;
        for (uint8_t *sample : {&pixel.red, &pixel.green, &pixel.blue}) {
            *sample = impulse ? RandomSample(&generator) : WithGrain(*sample, &generator);
        }
    }
    return picture;
}
