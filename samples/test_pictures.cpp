#include "samples/test_pictures.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "samples/random.h"
#include "samples/shapes.h"

namespace {

constexpr int kSize = 512;
constexpr Pixel kPaper = {250, 248, 242};
constexpr Pixel kInk = {38, 44, 60};

// The leaves are drawn twice as large.
constexpr int kFine = 2 * kSize;

// Sizes fall with the third power, as those of things in photographs.
void DrawLeaf(PictureRGB *picture, Generator *generator) {
    constexpr double kLeast = 10;
    constexpr double kLargest = 300;
    const double part = (Next(generator, 65536) + 1) / 65536.0;
    const int radius = static_cast<int>(std::min(kLeast / std::sqrt(part), kLargest));
    const int centerX = static_cast<int>(Next(generator, kFine));
    const int centerY = static_cast<int>(Next(generator, kFine));
    uint8_t samples[6];
    for (uint8_t &sample : samples) {
        sample = static_cast<uint8_t>(30 + Next(generator, 200));
    }
    const Pixel top = {samples[0], samples[1], samples[2]};
    const Pixel bottom = Mix(top, {samples[3], samples[4], samples[5]}, 1, 4);
    for (int y = std::max(-radius, -centerY); y <= std::min(radius, kFine - 1 - centerY); ++y) {
        const Pixel color = Mix(top, bottom, y + radius, 2 * radius + 1);
        const int reach = static_cast<int>(std::sqrt(radius * radius - y * y));
        Fill(picture, {centerX - reach, centerY + y, centerX + reach + 1, centerY + y + 1}, color);
    }
}

// Smooth hills and hollows of brightness, some pixels wide.
class Texture {
  public:
    explicit Texture(Generator *generator) {
        for (int &height : heights) {
            height = static_cast<int>(Next(generator, 2 * kHeight + 1)) - kHeight;
        }
    }

    int At(int x, int y) const {
        const int right = x % kCell;
        const int down = y % kCell;
        const int *corner = &heights[static_cast<size_t>(y / kCell * kRow + x / kCell)];
        const int above = corner[0] * (kCell - right) + corner[1] * right;
        const int below = corner[kRow] * (kCell - right) + corner[kRow + 1] * right;
        return (above * (kCell - down) + below * down) / (kCell * kCell);
    }

  private:
    static constexpr int kHeight = 20;
    static constexpr int kCell = 8;
    static constexpr int kRow = kFine / kCell + 1;
    int heights[kRow * kRow] = {};
};

// The mean of a channel over the 4 x 4 fine pixels around.
uint8_t Blurred(PictureRGB &fine, int x, int y, uint8_t Pixel::*channel) {
    int sum = 0;
    for (int down = -1; down <= 2; ++down) {
        for (int right = -1; right <= 2; ++right) {
            sum += At(fine, std::clamp(2 * x + right, 0, kFine - 1), std::clamp(2 * y + down, 0, kFine - 1)).*
                   channel;
        }
    }
    return static_cast<uint8_t>(sum / 16);
}

}  // namespace

PictureRGB DrawLeaves() {
    constexpr int kLeaves = 12000;  // hardly a pixel stays uncovered
    constexpr uint8_t Pixel::*kChannels[] = {&Pixel::red, &Pixel::green, &Pixel::blue};
    Generator generator;
    PictureRGB fine = MakePicture(kFine, kFine, {128, 128, 128});
    for (int i = 0; i < kLeaves; ++i) {
        DrawLeaf(&fine, &generator);
    }
    const Texture texture(&generator);
    PictureRGB picture = MakePicture(kSize, kSize, {});
    for (int y = 0; y < kSize; ++y) {
        for (int x = 0; x < kSize; ++x) {
            for (const auto channel : kChannels) {
                const int sample = Blurred(fine, x, y, channel) + texture.At(2 * x, 2 * y);
                At(picture, x, y).*channel = static_cast<uint8_t>(std::clamp(sample, 0, 255));
            }
        }
    }
    return picture;
}

PictureRGB DrawPage(int stroke) {
    PictureRGB picture = MakePicture(kSize, kSize, kPaper);
    int letter = 0;
    for (int top = 16; top + 7 * stroke < kSize - 16; top += 12 * stroke) {
        for (int left = 16; left + 5 * stroke < kSize - 16; left += 7 * stroke, ++letter) {
            if (letter % 9 != 8) {  // a space between words
                Mark(&picture, left, top, stroke, letter % 9, kInk);
            }
        }
    }
    return picture;
}

PictureRGB DrawLines(int right, int down, int width) {
    constexpr int kDistance = 32;
    PictureRGB picture = MakePicture(kSize, kSize, kPaper);
    const bool flat = std::abs(right) >= std::abs(down);
    for (int start = -kSize; start < 2 * kSize; ++start) {
        if ((start + kSize) % kDistance < width) {
            const int x = flat ? 0 : start;
            const int y = flat ? start : 0;
            Line(&picture, x - kSize * right, y - kSize * down, x + kSize * right, y + kSize * down, kInk);
        }
    }
    return picture;
}
