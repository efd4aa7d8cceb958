// Rows of Lab and CMYK documents to RGB and back: fixed approximations that work in place on one row of
// interleaved samples.
//
// 8-bit samples are bytes, 16-bit ones 0 to 32768. Results are clamped and truncated. Converting there and
// back deliberately changes colours a little: exponents and inks differ. Rows need no alignment; a width
// below 1 does nothing.
#pragma once

#include <cstdint>

void _ConvertLAB8toRGB24(void *row, int32_t width);
void _ConvertLAB16toRGB48(void *row, int32_t width);
void _ConvertRGB24toLAB8(void *row, int32_t width);
void _ConvertRGB48toLAB16(void *row, int32_t width);

// 8-bit CMYK is stored inverted (255 is no ink), 16-bit CMYK is not. Four samples become three, packed, and
// the other way round.
void _ConvertCMYK8toRGB24(void *row, int32_t width);
void _ConvertCMYK16toRGB48(void *row, int32_t width);
void _ConvertRGB24toCMYK8(void *row, int32_t width);
void _ConvertRGB48toCMYK16(void *row, int32_t width);

struct ModeConversion {
    void (*toRGB)(void *row, int32_t width);
    void (*fromRGB)(void *row, int32_t width);
};

// How rows of a document mode become RGB and come back; null for modes whose rows stay as they are. Samples
// of more than one byte count as 16-bit ones.
const ModeConversion *ConversionOf(int16_t imageMode, int32_t sampleBytes);
