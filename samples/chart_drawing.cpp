#include "samples/chart_drawing.h"

#include <cstdlib>
#include <iterator>

#include "samples/shapes.h"

namespace {

constexpr int kWidth = 640;
constexpr int kHeight = 480;

constexpr Pixel kPaper = {238, 234, 224};
constexpr Pixel kLightPaper = {250, 248, 242};
constexpr Pixel kInk = {38, 44, 60};
constexpr Pixel kCoral = {226, 88, 62};
constexpr Pixel kTeal = {22, 130, 132};
constexpr Pixel kNavy = {27, 52, 96};
constexpr Pixel kSun = {246, 194, 76};
constexpr Pixel kPatches[] = {kCoral, kSun, {122, 170, 96}, kTeal, kNavy, {128, 74, 134}};

constexpr Box kSky = {0, 0, 640, 200};
constexpr Box kHatches = {16, 216, 96, 376};
constexpr Box kFan = {104, 216, 216, 376};
constexpr Box kRings = {232, 216, 408, 376};
constexpr Box kMarks = {424, 216, 624, 296};
constexpr Box kCheckers = {424, 304, 624, 376};
constexpr Box kPatchRow = {16, 392, 624, 464};

// Two pixels wide: shifted across the way that the line mostly goes.
void WideLine(PictureRGB *picture, int x0, int y0, int x1, int y1, Pixel color) {
    const bool flat = std::abs(x1 - x0) >= std::abs(y1 - y0);
    Line(picture, x0, y0, x1, y1, color);
    Line(picture, x0 + !flat, y0 + flat, x1 + !flat, y1 + flat, color);
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
    WideLine(picture, 120, 30, 120, 190, kInk);
    for (const int foot : {60, 90, 150, 180}) {
        WideLine(picture, 120, 34, foot, 186, kInk);
    }
    for (const int sag : {0, 8, 16}) {
        WideLine(picture, 120, 40 + sag, 380, 62 + sag, kInk);
        WideLine(picture, 380, 62 + sag, 639, 24 + sag, kInk);
    }
}

// Lines one pixel wide, level, upright and along both diagonals.
void DrawHatches(PictureRGB *picture) {
    constexpr int kDistance = 8;
    const int middleX = (kHatches.left + kHatches.right) / 2;
    const int middleY = (kHatches.top + kHatches.bottom) / 2;
    Fill(picture, kHatches, kLightPaper);
    for (int y = kHatches.top; y < kHatches.bottom; ++y) {
        for (int x = kHatches.left; x < kHatches.right; ++x) {
            const int across[] = {y, x, x + y, x - y};
            const int kind = (x >= middleX ? 1 : 0) + (y >= middleY ? 2 : 0);
            if (across[kind] % kDistance == 0) {
                Put(picture, x, y, kind % 2 == 0 ? kInk : kCoral);
            }
        }
    }
}

// Lines two pixels wide that fan out from one corner.
void DrawFan(PictureRGB *picture) {
    Fill(picture, kFan, kLightPaper);
    const int right = kFan.right - 2;
    const int bottom = kFan.bottom - 2;
    for (int x = kFan.left; x <= right; x += 16) {
        WideLine(picture, kFan.left, bottom, x, kFan.top, kInk);
    }
    for (int y = kFan.top; y <= bottom; y += 16) {
        WideLine(picture, kFan.left, bottom, right, y, kCoral);
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

// Rows of marks that look like writing, with strokes of two pixels.
void DrawMarks(PictureRGB *picture) {
    constexpr int kStroke = 2;
    constexpr int kRowStep = 24;
    constexpr int kMarkStep = 14;
    constexpr Pixel kColors[] = {kInk, kCoral, kNavy};
    Fill(picture, kMarks, kLightPaper);
    int mark = 0;
    for (int row = 0; row < 3; ++row) {
        for (int left = kMarks.left + 8; left + 10 < kMarks.right - 6; left += kMarkStep, ++mark) {
            if (mark % 9 != 8) {  // a space between words
                Mark(picture, left, kMarks.top + 9 + row * kRowStep, kStroke, mark % 9, kColors[row]);
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
    DrawHatches(&picture);
    DrawFan(&picture);
    DrawRings(&picture);
    DrawMarks(&picture);
    DrawCheckers(&picture);
    DrawPatches(&picture);
    return picture;
}
