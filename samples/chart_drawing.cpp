#include "samples/chart_drawing.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 480;

constexpr Pixel kPaper = {238, 234, 224};
constexpr Pixel kInk = {38, 44, 60};
constexpr Pixel kCoral = {226, 88, 62};
constexpr Pixel kTeal = {22, 130, 132};
constexpr Pixel kNavy = {27, 52, 96};
constexpr Pixel kSun = {246, 194, 76};
constexpr Pixel kPatches[] = {kCoral, kSun, {122, 170, 96}, kTeal, kNavy, {128, 74, 134}};

struct Box {
    int left, top, right, bottom;
};

constexpr Box kSky = {0, 0, 640, 200};
constexpr Box kFan = {16, 216, 216, 376};
constexpr Box kRings = {232, 216, 408, 376};
constexpr Box kMarks = {424, 216, 624, 296};
constexpr Box kCheckers = {424, 304, 624, 376};
constexpr Box kPatchRow = {16, 392, 624, 464};

uint8_t Mix(uint8_t from, uint8_t to, int part, int whole) {
    return static_cast<uint8_t>(from + (to - from) * part / whole);
}

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

// Bresenham's line, one pixel wide, both ends included.
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

// The height of a range of hills: straight slopes between the given peaks.
int Ridge(int x, const int (&peaks)[9]) {
    constexpr int kSpan = kWidth / 8;
    const int left = x / kSpan;
    return peaks[left] + (peaks[left + 1] - peaks[left]) * (x % kSpan) / kSpan;
}

void DrawSky(PictureRGB *picture) {
    constexpr Pixel kZenith = {58, 104, 170};
    constexpr Pixel kHorizon = {250, 214, 176};
    constexpr int kFarHills[] = {60, 95, 70, 108, 84, 62, 100, 76, 90};
    constexpr int kNearHills[] = {28, 36, 58, 34, 22, 48, 30, 52, 26};
    for (int y = kSky.top; y < kSky.bottom; ++y) {
        Fill(picture, {kSky.left, y, kSky.right, y + 1}, Mix(kZenith, kHorizon, y, kSky.bottom));
    }
    Disc(picture, 486, 78, 34, kSun);
    for (int x = kSky.left; x < kSky.right; ++x) {
        const int farTop = kSky.bottom - Ridge(x, kFarHills);
        const int nearTop = kSky.bottom - Ridge(x, kNearHills);
        for (int y = farTop; y < kSky.bottom; ++y) {
            const Pixel mist = Mix({92, 112, 150}, {176, 176, 182}, y - farTop, kSky.bottom - farTop);
            Put(picture, x, y, y < nearTop ? mist : Mix(kNavy, kTeal, y - nearTop, 80));
        }
    }
    // A mast with stays, and wires across the sky.
    Line(picture, 120, 30, 120, 190, kInk);
    for (const int foot : {60, 90, 150, 180}) {
        Line(picture, 120, 34, foot, 186, kInk);
    }
    for (const int sag : {0, 8, 16}) {
        Line(picture, 120, 40 + sag, 380, 62 + sag, kInk);
        Line(picture, 380, 62 + sag, 639, 24 + sag, kInk);
    }
}

// Lines that fan out from one corner.
void DrawFan(PictureRGB *picture) {
    Fill(picture, kFan, {250, 248, 242});
    const int right = kFan.right - 1;
    const int bottom = kFan.bottom - 1;
    for (int x = kFan.left; x <= right; x += 20) {
        Line(picture, kFan.left, bottom, x, kFan.top, kInk);
    }
    for (int y = kFan.top; y <= bottom; y += 16) {
        Line(picture, kFan.left, bottom, right, y, kCoral);
    }
}

void DrawRings(PictureRGB *picture) {
    Fill(picture, kRings, kNavy);
    const int centerX = (kRings.left + kRings.right) / 2;
    const int centerY = (kRings.top + kRings.bottom) / 2;
    // Rings that get thinner towards the middle.
    constexpr int kRadii[] = {76, 64, 56, 47, 41, 34, 30, 25, 22, 18, 16, 13, 11, 9};
    bool light = true;
    for (const int radius : kRadii) {
        Disc(picture, centerX, centerY, radius, light ? kPaper : kTeal);
        light = !light;
    }
    Disc(picture, centerX, centerY, 6, kCoral);
}

// Lines of five-by-seven marks that look like writing.
void DrawMarks(PictureRGB *picture) {
    Fill(picture, kMarks, {250, 248, 242});
    constexpr uint8_t kGlyphs[][7] = {
        {0x11, 0x11, 0x11, 0x1F, 0x11, 0x11, 0x11}, {0x11, 0x11, 0x0A, 0x04, 0x04, 0x04, 0x04},
        {0x11, 0x1B, 0x15, 0x15, 0x11, 0x11, 0x11}, {0x1F, 0x10, 0x10, 0x1E, 0x10, 0x10, 0x1F},
        {0x1E, 0x11, 0x11, 0x11, 0x11, 0x11, 0x1E}, {0x0E, 0x04, 0x04, 0x04, 0x04, 0x04, 0x0E},
        {0x0E, 0x11, 0x11, 0x1F, 0x11, 0x11, 0x11}, {0x11, 0x19, 0x15, 0x13, 0x11, 0x11, 0x11},
    };
    constexpr int kGlyphStep = 7;
    constexpr int kLineStep = 12;
    int glyph = 0;
    for (int top = kMarks.top + 6; top + 8 < kMarks.bottom; top += kLineStep) {
        const Pixel color = (top / kLineStep) % 3 == 0 ? kCoral : kInk;
        for (int left = kMarks.left + 8; left + 6 < kMarks.right - 6; left += kGlyphStep, ++glyph) {
            if (glyph % 9 == 8) {
                continue;  // a space between words
            }
            for (int bit = 0; bit < 5 * 7; ++bit) {
                if (kGlyphs[glyph % 9][bit / 5] >> (4 - bit % 5) & 1) {
                    Put(picture, left + bit % 5, top + bit / 5, color);
                }
            }
        }
    }
}

// Squares of 1, 2, 4 and 8 pixels.
void DrawCheckers(PictureRGB *picture) {
    constexpr int kColumns = 4;
    const int column = (kCheckers.right - kCheckers.left) / kColumns;
    for (int y = kCheckers.top; y < kCheckers.bottom; ++y) {
        for (int x = kCheckers.left; x < kCheckers.right; ++x) {
            const int kind = (x - kCheckers.left) / column;
            const int inColumn = (x - kCheckers.left) % column;
            const bool odd = ((inColumn >> kind) + ((y - kCheckers.top) >> kind)) % 2 != 0;
            Put(picture, x, y, odd ? kInk : kind % 2 == 0 ? kPaper : kSun);
        }
    }
}

// Flat colours, each with a darker triangle that has a sharp, slanted edge.
void DrawPatches(PictureRGB *picture) {
    constexpr int kCount = static_cast<int>(std::size(kPatches));
    const int width = kPatchRow.right - kPatchRow.left;
    const int height = kPatchRow.bottom - kPatchRow.top;
    for (int i = 0; i < kCount; ++i) {
        const int left = kPatchRow.left + i * width / kCount;
        const int right = kPatchRow.left + (i + 1) * width / kCount;
        Fill(picture, {left, kPatchRow.top, right, kPatchRow.bottom}, kPatches[i]);
        for (int y = 0; y < height; ++y) {
            const int reach = (right - left) * y / height * (i + 1) / kCount;
            Fill(picture, {left, kPatchRow.top + y, left + reach, kPatchRow.top + y + 1},
                 Mix(kPatches[i], kInk, 1, 2));
        }
    }
}

}  // namespace

PictureRGB DrawChart() {
    PictureRGB picture = MakePicture(kWidth, kHeight, kPaper);
    DrawSky(&picture);
    DrawFan(&picture);
    DrawRings(&picture);
    DrawMarks(&picture);
    DrawCheckers(&picture);
    DrawPatches(&picture);
    return picture;
}
