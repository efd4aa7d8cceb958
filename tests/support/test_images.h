// Images for tests to filter, and how to compare them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "imagestore/named_images.h"

// The same CRC as zlib's.
uint32_t Crc32(const std::vector<uint8_t> &bytes);

// The bytes of an image, row after row.
struct TestImage {
    int16_t width;
    int16_t height;
    int16_t bytesPerPixel;
    std::vector<uint8_t> bytes;

    int32_t RowBytes() const { return width * bytesPerPixel; }
};

// The caller tosses it.
NamedImage *MakeFrom(const TestImage &source);

std::vector<uint8_t> BytesOf(NamedImage *image);

std::vector<uint8_t> RandomBytes(size_t count, uint32_t seed);

TestImage RandomImage(int16_t width, int16_t height, int16_t bytesPerPixel, uint32_t seed);

// A pattern whose filtered checksums are known.
TestImage PatternImage(int16_t bytesPerPixel, int16_t width = 16, int16_t height = 12);
