#include "colors/color_modes.h"

#include <algorithm>
#include <cmath>

#include "colors/samples.h"
#include "photoshop/image_modes.h"

namespace {

// These are fast approximations with a look of their own, not colorimetry: no white point, no matrices of a
// standard. A constant that no comment derives was chosen for that look. Changing any of them changes
// results.

// What differs between the depths. The lightness factors map the top to the top, give or take half a unit.
struct Depth8 {
    using Sample = uint8_t;
    static constexpr int32_t kTop = plugInMaxSample8;
    static constexpr int32_t kNeutral = 128;  // a and b of a grey pixel
    static constexpr double kLightnessIn = 0.21190331370015586;
    static constexpr double kLightnessOut = 3.032;
};

struct Depth16 {
    using Sample = uint16_t;
    static constexpr int32_t kTop = plugInMaxSample16;
    static constexpr int32_t kNeutral = 16384;
    static constexpr double kLightnessIn = 0.054410153680922994;
    static constexpr double kLightnessOut = 8.0002901;
};

template <typename Depth>
typename Depth::Sample Clamped(double value) {
    return static_cast<typename Depth::Sample>(std::clamp<double>(value, 0, Depth::kTop));
}

// A pixel's three or four samples.
struct Pixel {
    int32_t s[4];
};

template <typename Sample>
Pixel LoadPixel(const void *row, int64_t x, int samples) {
    Pixel pixel = {};
    for (int i = 0; i < samples; ++i) {
        pixel.s[i] = LoadSample<Sample>(row, x * samples + i);
    }
    return pixel;
}

template <typename Depth>
void StorePixel(void *row, int64_t x, int samples, const double *values) {
    for (int i = 0; i < samples; ++i) {
        StoreSample(row, x * samples + i, Clamped<Depth>(values[i]));
    }
}

// Goes from the first pixel to the last; where the row grows, from the last to the first.
template <typename Depth>
void ConvertRow(void *row, int32_t width, int from, int to, void (*convert)(const Pixel &, double *)) {
    for (int32_t i = 0; i < width; ++i) {
        const int32_t x = to > from ? width - 1 - i : i;
        const Pixel pixel = LoadPixel<typename Depth::Sample>(row, x, from);
        double values[4];
        convert(pixel, values);
        StorePixel<Depth>(row, x, to, values);
    }
}

// Lightness goes to RGB with the exponent 1.28, for the look, and back with 0.8. Their product is 1.024: they
// are deliberately not quite inverses. Adding 0.05 keeps the logarithm of 0 finite; subtracting
// 10 * 0.05 ^ 1.28 (which leaves -0.04, and that rounds to 0) or 0.05 ^ 0.8 brings black back to 0. a is red
// less green, over 3; b is the mean of both less blue, over 1.2. RGBToLab
// rounds both factors to five digits.
template <typename Depth>
void LabToRGB(const Pixel &lab, double *rgb) {
    const auto l =
        static_cast<float>((std::exp(1.28 * std::log(lab.s[0] + 0.05)) - 0.216113355) * Depth::kLightnessIn);
    const auto a = static_cast<float>((lab.s[1] - Depth::kNeutral) * 3.0);
    const auto b = static_cast<float>((lab.s[2] - Depth::kNeutral) * 1.2);
    // Adding 0.5 turns truncation into rounding.
    rgb[0] = double{l} + 0.5 * double{a} + double{b} / 3.0 + 0.5;
    rgb[1] = double{l} - 0.5 * double{a} + double{b} / 3.0 + 0.5;
    rgb[2] = double{l} - (2.0 / 3.0) * double{b} + 0.5;
}

template <typename Depth>
void RGBToLab(const Pixel &rgb, double *lab) {
    const auto [r, g, b, unused] = rgb.s;
    const int32_t mean = (r + g + b + 1) / 3;
    const double t = double{static_cast<float>(mean)} + 0.05;
    lab[0] = (std::exp(0.8 * std::log(t)) - 0.09102821) * Depth::kLightnessOut;
    lab[1] = (r - g) * 0.33333 + Depth::kNeutral;
    lab[2] = ((r + g) * 0.5 - b) * 0.83333 + Depth::kNeutral;
}

// An ink printed over black: with black at k, the rest of the paper, 1 - k, is left to the ink.
double InkOnPaper(double ink, double k, double top) {
    const double covered = ink * (1 - k) + k;
    return covered >= 1 ? top : covered * top;
}

// Tuned for the look: red is raised by 15 % and blue lowered by as much, then red and blue are drawn towards
// the mean by a fifth, and green by two fifths. The small constant added to k keeps 1 - k from being 0 in
// RGBToCMYK16; the other conversions have one to match.
void CMYK8ToRGB(const Pixel &cmyk, double *rgb) {
    const auto ink = [&](int i) { return double{static_cast<float>((255 - cmyk.s[i]) / 255.0)}; };
    const double k = (255 - cmyk.s[3]) / 255.0 + 0.0001;
    const double r = (255 - InkOnPaper(ink(0), k, 255)) * 1.15;
    const double g = 255 - InkOnPaper(ink(1), k, 255);
    const double b = (255 - InkOnPaper(ink(2), k, 255)) * 0.85;
    const double mean = (r + g + b) * 0.33333334;
    rgb[0] = 0.8 * r + 0.2 * mean;
    rgb[1] = 0.6 * g + 0.4 * mean;
    rgb[2] = 0.8 * b + 0.2 * mean;
}

void CMYK16ToRGB(const Pixel &cmyk, double *rgb) {
    const double k = cmyk.s[3] / 32768.0 + 0.001;
    for (int i = 0; i < 3; ++i) {
        rgb[i] = 32768 - InkOnPaper(cmyk.s[i] / 32768.0, k, 32768);
    }
}

// Tuned for the look: only 40/43 (0.9302...) of the grey goes into black. The stored value
// of cyan, which is inverted, is cut to 10/11, so there is a little more cyan.
void RGBToCMYK8(const Pixel &rgb, double *cmyk) {
    constexpr float kScale = 1.0f / 255.0f;
    float ink[3];
    for (int i = 0; i < 3; ++i) {
        ink[i] = static_cast<float>(255 - rgb.s[i]) * kScale;
    }
    const double k = double{std::min({ink[0], ink[1], ink[2]})} * 0.9302325581395349 + 0.0001;
    const double f = 1 / (1 - k);
    cmyk[0] = (1 - (double{ink[0]} - k) * f) * 255 * 0.9090909090909091;
    cmyk[1] = (1 - (double{ink[1]} - k) * f) * 255;
    cmyk[2] = (1 - (double{ink[2]} - k) * f) * 255;
    cmyk[3] = (1 - k) * 255;
}

void RGBToCMYK16(const Pixel &rgb, double *cmyk) {
    double ink[3];
    for (int i = 0; i < 3; ++i) {
        ink[i] = (32768 - rgb.s[i]) / 32768.0;
    }
    const double k = std::min({ink[0], ink[1], ink[2]}) + 0.001;
    const double f = 1 / (1 - k);
    for (int i = 0; i < 3; ++i) {
        cmyk[i] = (ink[i] - k) * f * 32768;
    }
    cmyk[3] = k * 32768;
}

}  // namespace

void _ConvertLAB8toRGB24(void *row, int32_t width) {
    ConvertRow<Depth8>(row, width, 3, 3, LabToRGB<Depth8>);
}

void _ConvertLAB16toRGB48(void *row, int32_t width) {
    ConvertRow<Depth16>(row, width, 3, 3, LabToRGB<Depth16>);
}

void _ConvertRGB24toLAB8(void *row, int32_t width) {
    ConvertRow<Depth8>(row, width, 3, 3, RGBToLab<Depth8>);
}

void _ConvertRGB48toLAB16(void *row, int32_t width) {
    ConvertRow<Depth16>(row, width, 3, 3, RGBToLab<Depth16>);
}

void _ConvertCMYK8toRGB24(void *row, int32_t width) {
    ConvertRow<Depth8>(row, width, 4, 3, CMYK8ToRGB);
}

void _ConvertCMYK16toRGB48(void *row, int32_t width) {
    ConvertRow<Depth16>(row, width, 4, 3, CMYK16ToRGB);
}

void _ConvertRGB24toCMYK8(void *row, int32_t width) {
    ConvertRow<Depth8>(row, width, 3, 4, RGBToCMYK8);
}

void _ConvertRGB48toCMYK16(void *row, int32_t width) {
    ConvertRow<Depth16>(row, width, 3, 4, RGBToCMYK16);
}

const ModeConversion *ConversionOf(int16_t imageMode, int32_t sampleBytes) {
    // First for samples of one byte, then for larger ones.
    static constexpr ModeConversion kLab[] = {{_ConvertLAB8toRGB24, _ConvertRGB24toLAB8},
                                              {_ConvertLAB16toRGB48, _ConvertRGB48toLAB16}};
    static constexpr ModeConversion kCMYK[] = {{_ConvertCMYK8toRGB24, _ConvertRGB24toCMYK8},
                                               {_ConvertCMYK16toRGB48, _ConvertRGB48toCMYK16}};
    const int depth = sampleBytes == 1 ? 0 : 1;
    switch (imageMode) {
        case plugInModeLabColor:
        case plugInModeLab48:
            return &kLab[depth];
        case plugInModeCMYKColor:
        case plugInModeCMYK64:
            return &kCMYK[depth];
        default:
            return nullptr;
    }
}
