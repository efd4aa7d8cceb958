#include "image_access.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

struct Axis {
    int64_t count;
    int64_t stride;
};

constexpr int kAxes = 3;

struct Axes {
    Axis at[kAxes];
};

// Where there is but one, no stride is ever made, so whatever is said of it counts as none.
Axis AxisOf(int64_t count, int64_t stride) {
    return {count, count > 1 ? stride : 0};
}

Axes AxesOf(const hymedian_image &image) {
    return {{AxisOf(image.components, image.component_stride), AxisOf(image.width, image.pixel_stride),
             AxisOf(image.height, image.row_stride)}};
}

bool IsPacked(const hymedian_image &image) {
    return image.pixel_stride == PixelBytes(image) &&
           (image.components == 1 || image.component_stride == image.sample);
}

// Calls copy(sample in the image, packed sample) for each sample.
template <typename Byte, typename Copy>
void VisitSamples(const hymedian_image &image, int64_t x, int64_t y, int64_t count, Byte *packed, Copy copy) {
    for (int64_t i = 0; i < count; ++i) {
        uint8_t *pixel = PixelAt(image, x + i, y);
        for (int64_t c = 0; c < image.components; ++c, packed += image.sample) {
            copy(pixel + c * image.component_stride, packed);
        }
    }
}

// Calls visit with a copy of a sample's bytes from its second to its first parameter.
template <typename Visit>
void WithSampleCopy(const hymedian_image &image, Visit visit) {
    switch (image.sample) {
        case HYMEDIAN_UINT8:
            return visit([](void *to, const void *from) { std::memcpy(to, from, 1); });
        case HYMEDIAN_UINT16:
            return visit([](void *to, const void *from) { std::memcpy(to, from, 2); });
        default:
            return visit([](void *to, const void *from) { std::memcpy(to, from, 4); });
    }
}

}  // namespace

bool FindBytes(const hymedian_image &image, ByteRange *range) {
    int64_t before = 0;
    int64_t behind = image.sample;
    for (const Axis &axis : AxesOf(image).at) {
        int64_t reach = 0;
        int64_t *end = axis.stride < 0 ? &before : &behind;
        if (__builtin_mul_overflow(axis.count - 1, axis.stride, &reach) ||
            __builtin_add_overflow(*end, reach, end)) {
            return false;
        }
    }
    const auto at = reinterpret_cast<uintptr_t>(image.pixels);
    int64_t all = 0;
    // `before` is not positive.
    return !__builtin_sub_overflow(behind, before, &all) &&
           !__builtin_sub_overflow(at, uintptr_t{0} - static_cast<uintptr_t>(before), &range->first) &&
           !__builtin_add_overflow(at, static_cast<uintptr_t>(behind), &range->end);
}

bool HasSamplesApart(const hymedian_image &image) {
    Axes axes = AxesOf(image);
    std::sort(axes.at, axes.at + kAxes,
              [](const Axis &a, const Axis &b) { return std::abs(a.stride) < std::abs(b.stride); });
    int64_t taken = image.sample;
    for (const Axis &axis : axes.at) {
        if (axis.count > 1) {
            if (std::abs(axis.stride) < taken) {
                return false;
            }
            taken += std::abs(axis.stride) * (axis.count - 1);
        }
    }
    return true;
}

void TakePixels(const hymedian_image &image, int64_t x, int64_t y, int64_t count, uint8_t *packed) {
    if (IsPacked(image)) {
        std::memcpy(packed, PixelAt(image, x, y), static_cast<size_t>(count * PixelBytes(image)));
        return;
    }
    WithSampleCopy(image, [&](auto copy) {
        VisitSamples(image, x, y, count, packed,
                     [&](const uint8_t *sample, uint8_t *to) { copy(to, sample); });
    });
}

void StorePixels(const uint8_t *packed, int64_t x, int64_t y, int64_t count, const hymedian_image &image) {
    if (IsPacked(image)) {
        std::memcpy(PixelAt(image, x, y), packed, static_cast<size_t>(count * PixelBytes(image)));
        return;
    }
    WithSampleCopy(image, [&](auto copy) {
        VisitSamples(image, x, y, count, packed,
                     [&](uint8_t *sample, const uint8_t *from) { copy(sample, from); });
    });
}
