#include "samples/damage.h"

#include <algorithm>

#include "samples/random.h"
#include "samples/shapes.h"

namespace {

int Below(Generator *generator, int limit) {
    return static_cast<int>(Next(generator, static_cast<uint32_t>(limit)));
}

Pixel RandomColor(Generator *generator) {
    const auto red = static_cast<uint8_t>(Next(generator, 256));
    const auto green = static_cast<uint8_t>(Next(generator, 256));
    return {red, green, static_cast<uint8_t>(Next(generator, 256))};
}

void AddImpulses(PictureRGB *picture, int percent) {
    Generator generator;
    for (Pixel &pixel : picture->pixels) {
        if (Below(&generator, 100) < percent) {
            pixel = RandomColor(&generator);
        }
    }
}

// The sum of twelve uniform numbers from 0 to 1 is close to normal, and its deviation is 1.
void AddGaussian(PictureRGB *picture, int deviation) {
    constexpr int kTerms = 12;
    constexpr int kSteps = 1 << 16;
    Generator generator;
    for (Pixel &pixel : picture->pixels) {
        for (uint8_t *sample : {&pixel.red, &pixel.green, &pixel.blue}) {
            int64_t sum = 0;
            for (int i = 0; i < kTerms; ++i) {
                sum += 2 * Below(&generator, kSteps) - (kSteps - 1);
            }
            const int64_t rounded =
                (sum * deviation + int64_t{2} * 256 * kSteps + kSteps) / (int64_t{2} * kSteps) - 256;
            *sample = static_cast<uint8_t>(std::clamp<int64_t>(*sample + rounded, 0, 255));
        }
    }
}

void AddBlobs(PictureRGB *picture, int count) {
    Generator generator;
    for (int i = 0; i < count; ++i) {
        const int x = Below(&generator, picture->width - 2);
        const int y = Below(&generator, picture->height - 2);
        Fill(picture, {x, y, x + 3, y + 3}, RandomColor(&generator));
    }
}

// White, from top to bottom, each at most `sway` pixels to the side.
void Scratch(PictureRGB *picture, int count, int sway) {
    Generator generator;
    for (int i = 0; i < count; ++i) {
        const int x = Below(&generator, picture->width);
        const int end = x + Below(&generator, 2 * sway + 1) - sway;
        Line(picture, x, 0, end, picture->height - 1, {255, 255, 255});
    }
}

void AddUprightScratches(PictureRGB *picture, int count) {
    Scratch(picture, count, 0);
}

void AddSlantedScratches(PictureRGB *picture, int count) {
    Scratch(picture, count, picture->height);
}

}  // namespace

const Damage kDamage[kDamages] = {
    {"impulses", "PERCENT", AddImpulses},
    {"gaussian", "DEVIATION", AddGaussian},
    {"blobs", "COUNT", AddBlobs},
    {"scratches", "COUNT", AddUprightScratches},
    {"slanted-scratches", "COUNT", AddSlantedScratches},
};
