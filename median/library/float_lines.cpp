#include "float_lines.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "image_access.h"

namespace {

constexpr int kMaxComponents = 3;
constexpr double kSteps = 32768;
// A place is told apart from all within the radius by the low bits of its row and column.
constexpr int kTagBits = 4;
constexpr int kTagPeriod = 1 << kTagBits;
static_assert(2 * HYMEDIAN_MAX_RADIUS < kTagPeriod);

struct Pixel {
    float component[kMaxComponents];
};

template <int kComponents>
Pixel Load(const hymedian_image &image, int64_t x, int64_t y) {
    Pixel pixel = {};
    const uint8_t *from = PixelAt(image, x, y);
    for (int64_t c = 0; c < kComponents; ++c) {
        std::memcpy(&pixel.component[c], from + c * image.component_stride, sizeof(float));
    }
    return pixel;
}

template <int kComponents>
bool IsFinite(const Pixel &pixel) {
    return std::all_of(pixel.component, pixel.component + kComponents,
                       [](float sample) { return std::isfinite(sample); });
}

// Beyond the range counts as its end, and NaN as its least.
uint16_t StepOf(float sample, const FloatImage &floats) {
    const double part = (double{sample} - floats.least) / (double{floats.greatest} - floats.least);
    if (!(part > 0)) {
        return 0;
    }
    // Rounded, halves upwards; adding a half first could round twice.
    const double steps = std::min(part, 1.0) * kSteps;
    const auto below = static_cast<uint16_t>(steps);
    return static_cast<uint16_t>(below + (steps - below >= 0.5));
}

uint16_t TagOf(int64_t x, int64_t y) {
    return static_cast<uint16_t>(y % kTagPeriod << kTagBits | x % kTagPeriod);
}

// The nearest number to `at` whose low bits are those of the tag.
int64_t Untag(int tag, int64_t at) {
    const int64_t ahead = (tag - at) & (kTagPeriod - 1);
    return at + (ahead < kTagPeriod / 2 ? ahead : ahead - kTagPeriod);
}

template <int kComponents>
void StoreSteps(const FloatImage &floats, const Pixel &pixel, uint16_t *tagged) {
    for (int c = 0; c < kComponents; ++c) {
        tagged[c] = StepOf(pixel.component[c], floats);
    }
}

// Gives pixels that are not finite the steps of others; in a row without any others they keep theirs.
template <int kComponents>
void StandIn(const FloatImage &floats, int64_t x, int64_t y, int64_t count, uint16_t *tagged) {
    const hymedian_image &image = *floats.image;
    const auto finite = [&](int64_t column) {
        return IsFinite<kComponents>(Load<kComponents>(image, column, y));
    };
    int64_t before = x;
    while (before >= 0 && !finite(before)) {
        --before;
    }
    int64_t after = x;
    for (int64_t column = x; column < x + count; ++column, tagged += kComponents + 1) {
        if (finite(column)) {
            before = column;
            continue;
        }
        after = std::max(after, column);
        while (after < image.width && !finite(after)) {
            ++after;
        }
        const bool isLeft = before >= 0 && (after == image.width || column - before <= after - column);
        if (isLeft || after < image.width) {
            StoreSteps<kComponents>(floats, Load<kComponents>(image, isLeft ? before : after, y), tagged);
        }
    }
}

template <int kComponents>
void Tag(const FloatImage &floats, int64_t x, int64_t y, int64_t count, uint16_t *tagged) {
    bool finite = true;
    uint16_t *to = tagged;
    for (int64_t column = x; column < x + count; ++column, to += kComponents + 1) {
        const Pixel pixel = Load<kComponents>(*floats.image, column, y);
        StoreSteps<kComponents>(floats, pixel, to);
        to[kComponents] = TagOf(column, y);
        finite &= IsFinite<kComponents>(pixel);
    }
    if (!finite) {
        StandIn<kComponents>(floats, x, y, count, tagged);
    }
}

// The filter looks along lines through the pixel: straight, diagonal, and at slopes of about a half.
bool IsLookedAt(int64_t dy, int64_t dx) {
    const int64_t longer = std::max(std::abs(dy), std::abs(dx));
    const int64_t shorter = std::min(std::abs(dy), std::abs(dx));
    return shorter == 0 || shorter == longer || shorter == (longer + 1) / 2;
}

// A pixel around (x, y) that is finite and has the same steps; without one, the pixel itself.
template <int kComponents>
Pixel FindAlike(const FloatImage &floats, const uint16_t *steps, int64_t x, int64_t y) {
    const hymedian_image &image = *floats.image;
    for (int64_t dy = -floats.radius; dy <= floats.radius; ++dy) {
        for (int64_t dx = -floats.radius; dx <= floats.radius; ++dx) {
            const int64_t row = std::clamp<int64_t>(y + dy, 0, image.height - 1);
            const int64_t column = std::clamp<int64_t>(x + dx, 0, image.width - 1);
            const Pixel pixel = Load<kComponents>(image, column, row);
            uint16_t found[kMaxComponents];
            StoreSteps<kComponents>(floats, pixel, found);
            if (IsLookedAt(dy, dx) && IsFinite<kComponents>(pixel) &&
                std::equal(found, found + kComponents, steps)) {
                return pixel;
            }
        }
    }
    return Load<kComponents>(image, x, y);
}

template <int kComponents>
void Take(const FloatImage &floats, const uint16_t *chosen, int64_t x, int64_t y, int64_t count,
          uint8_t *packed) {
    constexpr int64_t kBytes = kComponents * int64_t{sizeof(float)};
    for (int64_t column = x; column < x + count; ++column, chosen += kComponents + 1, packed += kBytes) {
        const int tag = chosen[kComponents];
        Pixel pixel = Load<kComponents>(*floats.image, column, y);
        if (IsFinite<kComponents>(pixel)) {
            pixel = Load<kComponents>(*floats.image, Untag(tag, column), Untag(tag >> kTagBits, y));
            // A pixel that is not finite was chosen for the steps that it has from another one.
            if (!IsFinite<kComponents>(pixel)) {
                pixel = FindAlike<kComponents>(floats, chosen, column, y);
            }
        }
        std::memcpy(packed, pixel.component, kBytes);
    }
}

}  // namespace

void WidenRange(const hymedian_image &image, int64_t y, float *least, float *greatest) {
    for (int64_t x = 0; x < image.width; ++x) {
        const Pixel pixel = image.components == 1 ? Load<1>(image, x, y) : Load<3>(image, x, y);
        for (int c = 0; c < image.components; ++c) {
            if (std::isfinite(pixel.component[c])) {
                *least = std::min(*least, pixel.component[c]);
                *greatest = std::max(*greatest, pixel.component[c]);
            }
        }
    }
}

void TagPixels(const FloatImage &floats, int64_t x, int64_t y, int64_t count, uint16_t *tagged) {
    (floats.image->components == 1 ? Tag<1> : Tag<3>)(floats, x, y, count, tagged);
}

void TakeChosen(const FloatImage &floats, const uint16_t *chosen, int64_t x, int64_t y, int64_t count,
                uint8_t *packed) {
    (floats.image->components == 1 ? Take<1> : Take<3>)(floats, chosen, x, y, count, packed);
}
