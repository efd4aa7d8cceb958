// Document colour modes, and the sample range of each depth.
#pragma once

#include <cstdint>

enum : int16_t {
    plugInModeBitmap = 0,
    plugInModeGrayScale = 1,
    plugInModeIndexedColor = 2,
    plugInModeRGBColor = 3,
    plugInModeCMYKColor = 4,
    plugInModeHSLColor = 5,
    plugInModeHSBColor = 6,
    plugInModeMultichannel = 7,
    plugInModeDuotone = 8,
    plugInModeLabColor = 9,
    plugInModeGray16 = 10,
    plugInModeRGB48 = 11,
    plugInModeLab48 = 12,
    plugInModeCMYK64 = 13,
    plugInModeDeepMultichannel = 14,
    plugInModeDuotone16 = 15,
    plugInModeRGB96 = 16,
    plugInModeGray32 = 17,
};

constexpr int plugInModeCount = 18;

// White as an integer sample. 32-bit samples are floats, with white at 1.0.
constexpr uint8_t plugInMaxSample8 = 255;
constexpr uint16_t plugInMaxSample16 = 32768;
