// A picture of 8-bit RGB pixels, and its files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct Pixel {
    uint8_t red, green, blue;
};

struct PictureRGB {
    int width = 0;
    int height = 0;
    std::vector<Pixel> pixels;  // row by row
};

PictureRGB MakePicture(int width, int height, Pixel background);
Pixel &At(PictureRGB &picture, int x, int y);

// Both return false when the library refuses; vips_error_buffer() then has its message.
bool ReadRGB(const std::string &file, PictureRGB *picture);  // any 8-bit RGB picture
bool WriteRGB(const PictureRGB &picture, const std::string &file);
