#include "tests/support/test_images.h"

#include <gtest/gtest.h>

#include <random>

uint32_t Crc32(const std::vector<uint8_t> &bytes) {
    uint32_t crc = 0xFFFFFFFF;
    for (const uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1)));
        }
    }
    return ~crc;
}

NamedImage *MakeFrom(const TestImage &source) {
    NamedImage *image = nullptr;
    EXPECT_EQ(MakeImage(source.width, source.height, source.bytesPerPixel, &image), noErr);
    for (int32_t y = 0; y < source.height; ++y) {
        PutLine(image, 0, y, source.RowBytes(), source.bytes.data() + y * source.RowBytes());
    }
    return image;
}

std::vector<uint8_t> BytesOf(NamedImage *image) {
    ImageData data;
    GetImageData(image, &data);
    const int32_t rowBytes = data.width * data.bytesPerPixel;
    std::vector<uint8_t> bytes(static_cast<size_t>(rowBytes * data.height));
    for (int32_t y = 0; y < data.height; ++y) {
        GetLine(image, 0, y, rowBytes, bytes.data() + y * rowBytes);
    }
    return bytes;
}

std::vector<uint8_t> RandomBytes(size_t count, uint32_t seed) {
    std::mt19937 random(seed);
    std::vector<uint8_t> bytes(count);
    for (uint8_t &byte : bytes) {
        byte = static_cast<uint8_t>(random());
    }
    return bytes;
}

TestImage RandomImage(int16_t width, int16_t height, int16_t bytesPerPixel, uint32_t seed) {
    return {width, height, bytesPerPixel,
            RandomBytes(static_cast<size_t>(width) * static_cast<size_t>(height * bytesPerPixel), seed)};
}

TestImage PatternImage(int16_t bytesPerPixel, int16_t width, int16_t height) {
    const bool deep = bytesPerPixel % 2 == 0;
    const int channels = deep ? bytesPerPixel / 2 : bytesPerPixel;
    TestImage image = {width, height, bytesPerPixel, {}};
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            for (int c = 0; c < channels; ++c) {
                const int sample =
                    deep
                        ? (4099 * x * x + 7919 * y * y + 104729 * x * y + 21845 * c + 12347 * (x ^ y)) % 32769
                        : (7 * x * x + 13 * y * y + 11 * x * y + 85 * c + 29 * (x ^ y)) & 255;
                image.bytes.push_back(static_cast<uint8_t>(sample));
                if (deep) {
                    image.bytes.push_back(static_cast<uint8_t>(sample >> 8));
                }
            }
        }
    }
    return image;
}
