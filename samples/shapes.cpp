#include "samples/shapes.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr uint8_t kMarks[kMarkCount][7] = {
    {0x11, 0x11, 0x11, 0x1F, 0x11, 0x11, 0x11}, {0x11, 0x11, 0x0A, 0x04, 0x04, 0x04, 0x04},
    {0x11, 0x1B, 0x15, 0x15, 0x11, 0x11, 0x11}, {0x1F, 0x10, 0x10, 0x1E, 0x10, 0x10, 0x1F},
    {0x1E, 0x11, 0x11, 0x11, 0x11, 0x11, 0x1E}, {0x0E, 0x04, 0x04, 0x04, 0x04, 0x04, 0x0E},
    {0x0E, 0x11, 0x11, 0x1F, 0x11, 0x11, 0x11}, {0x11, 0x19, 0x15, 0x13, 0x11, 0x11, 0x11},
};

uint8_t Mix(uint8_t from, uint8_t to, int part, int whole) {
    return static_cast<uint8_t>(from + (to - from) * part / whole);
}

}  // namespace

Pixel Mix(Pixel from, Pixel to, int part, int whole) {
    return {Mix(from.red, to.red, part, whole), Mix(from.green, to.green, part, whole),
            Mix(from.blue, to.blue, part, whole)};
}

void Put(PictureRGB *picture, int x, int y, Pixel color) {
    if (x >= 0 && y >= 0 && x < picture->width && y < picture->height) {
        At(*picture, x, y) = color;
    }
}

void Fill(PictureRGB *picture, const Box &box, Pixel color) {
    for (int y = box.top; y < box.bottom; ++y) {
        for (int x = box.left; x < box.right; ++x) {
            Put(picture, x, y, color);
        }
    }
}

void Line(PictureRGB *picture, int x0, int y0, int x1, int y1, Pixel color) {
    const int dx = std::abs(x1 - x0);
    const int dy = -std::abs(y1 - y0);
    const int stepX = x0 < x1 ? 1 : -1;
    const int stepY = y0 < y1 ? 1 : -1;
    int error = dx + dy;
    for (;;) {
        Put(picture, x0, y0, color);
        if (x0 == x1 && y0 == y1) {
            return;
        }
        const int twice = 2 * error;
        if (twice >= dy) {
            error += dy;
            x0 += stepX;
        }
        if (twice <= dx) {
            error += dx;
            y0 += stepY;
        }
    }
}

void Disc(PictureRGB *picture, int centerX, int centerY, int radius, Pixel color) {
    for (int y = -radius; y <= radius; ++y) {
        for (int x = -radius; x <= radius; ++x) {
            if (x * x + y * y <= radius * radius) {
                Put(picture, centerX + x, centerY + y, color);
            }
        }
    }
}

void Mark(PictureRGB *picture, int left, int top, int scale, int index, Pixel color) {
    for (int bit = 0; bit < 5 * 7; ++bit) {
        if (kMarks[index][bit / 5] >> (4 - bit % 5) & 1) {
            const int x = left + bit % 5 * scale;
            const int y = top + bit / 5 * scale;
            Fill(picture, {x, y, x + scale, y + scale}, color);
        }
    }
}
