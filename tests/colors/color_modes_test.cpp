#include "colors/color_modes.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

namespace {

using Convert = void (*)(void *row, int32_t width);

struct Case {
    std::vector<int> in;
    std::vector<int> out;
};

struct Conversion {
    const char *name;
    Convert convert;
    size_t sampleBytes;
    std::vector<Case> cases;
};

const std::vector<Conversion> kConversions = {
    {"Lab 8 to RGB",
     _ConvertLAB8toRGB24,
     1,
     {{{0, 128, 128}, {0, 0, 0}},
      {{64, 128, 128}, {43, 43, 43}},
      {{255, 128, 128}, {255, 255, 255}},
      {{200, 148, 108}, {209, 149, 203}},
      {{100, 64, 192}, {7, 199, 26}},
      {{0, 0, 0}, {0, 141, 102}},
      {{255, 1, 3}, {15, 255, 255}},  // 14 in double precision
      {{255, 255, 255}, {255, 115, 153}}}},
    {"Lab 16 to RGB",
     _ConvertLAB16toRGB48,
     2,
     {{{0, 16384, 16384}, {0, 0, 0}},
      {{8192, 16384, 16384}, {5557, 5557, 5557}},
      {{32768, 16384, 16384}, {32768, 32768, 32768}},
      {{25700, 18944, 13824}, {26826, 19146, 26058}}}},
    {"CMYK 8 to RGB",
     _ConvertCMYK8toRGB24,
     1,
     {{{255, 255, 255, 255}, {255, 254, 224}},
      {{0, 0, 0, 0}, {0, 0, 0}},
      {{128, 128, 128, 255}, {143, 127, 112}},
      {{200, 150, 100, 220}, {185, 131, 85}}}},
    {"CMYK 16 to RGB",
     _ConvertCMYK16toRGB48,
     2,
     {{{0, 0, 0, 0}, {32735, 32735, 32735}},
      {{0, 0, 0, 32768}, {0, 0, 0}},
      {{8192, 16384, 24576, 4096}, {21479, 14319, 7159}},
      {{65535, 65535, 65535, 65535}, {32768, 32768, 32768}}}},
    {"RGB to CMYK 8",
     _ConvertRGB24toCMYK8,
     1,
     {{{255, 255, 255}, {231, 255, 255, 254}},
      {{0, 0, 0}, {0, 0, 0, 17}},
      {{64, 128, 192}, {75, 166, 249, 196}},
      {{0, 9, 58}, {0, 31, 206, 71}}}},
    {"RGB to CMYK 16",
     _ConvertRGB48toCMYK16,
     2,
     {{{32768, 32768, 32768}, {0, 0, 0, 32}},
      {{0, 0, 0}, {32768, 32768, 32768, 32768}},
      {{33, 33, 33}, {0, 0, 0, 32767}},
      {{8192, 16384, 24576}, {21830, 10893, 0, 8224}}}},
    {"RGB to Lab 8",
     _ConvertRGB24toLAB8,
     1,
     {{{0, 0, 0}, {0, 128, 128}},
      {{1, 1, 1}, {2, 128, 128}},
      {{255, 0, 0}, {105, 212, 234}},
      {{64, 128, 192}, {146, 106, 48}}}},
    {"RGB to Lab 16",
     _ConvertRGB48toLAB16,
     2,
     {{{0, 0, 0}, {0, 16384, 16384}},
      {{1, 1, 1}, {7, 16384, 16384}},
      {{32768, 0, 0}, {13606, 27306, 30037}}}},
};

// All cases as one row, so that growing and shrinking rows reveal pixels that were overwritten too early. The
// row starts at an odd address and ends exactly with its last pixel.
TEST(ColorModes, ConvertWholeRows) {
    for (const Conversion &conversion : kConversions) {
        std::vector<uint8_t> row(1), expected(1);
        const auto append = [&](const std::vector<int> &samples, std::vector<uint8_t> *bytes) {
            for (const int sample : samples) {
                for (size_t b = 0; b < conversion.sampleBytes; ++b) {
                    bytes->push_back(static_cast<uint8_t>(sample >> (8 * b)));
                }
            }
        };
        for (const Case &c : conversion.cases) {
            append(c.in, &row);
            append(c.out, &expected);
        }
        const auto width = static_cast<int32_t>(conversion.cases.size());
        row.resize(std::max(row.size(), expected.size()));
        const std::vector<uint8_t> untouched = row;
        conversion.convert(row.data() + 1, 0);
        conversion.convert(row.data() + 1, -1);
        EXPECT_EQ(row, untouched);
        conversion.convert(row.data() + 1, width);
        row.resize(expected.size());
        EXPECT_EQ(row, expected) << conversion.name;
    }
}

}  // namespace
