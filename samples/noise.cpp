#include "samples/noise.h"

#include <algorithm>

#include "samples/random.h"

namespace {

// Chosen so that both kinds of noise are plain to see.
constexpr uint32_t kImpulsesPerMille = 60;
// Four uniform numbers from 0 to kGrain - 1 add up to a bell curve with a standard deviation of about 5.2.
constexpr uint32_t kGrain = 9;
constexpr int kGrainTerms = 4;
constexpr int kGrainMean = kGrainTerms * (int{kGrain} - 1) / 2;

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
