// Draws the sample pictures, and compares filtered pictures with them.
#include <vips/vips.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <limits>

#include "samples/chart_drawing.h"
#include "samples/damage.h"
#include "samples/noise.h"
#include "samples/picture_rgb.h"
#include "samples/test_pictures.h"

namespace {

int TellVipsError() {
    std::fprintf(stderr, "chart: %s", vips_error_buffer());
    return 1;
}

int Draw(char **files) {
    const PictureRGB chart = DrawChart();
    return WriteRGB(chart, files[0]) && WriteRGB(AddNoise(chart), files[1]) ? 0 : TellVipsError();
}

int Written(const PictureRGB &picture, const char *file) {
    return WriteRGB(picture, file) ? 0 : TellVipsError();
}

int Number(const char *text) {
    return static_cast<int>(std::strtol(text, nullptr, 10));
}

int DrawLeavesInto(char **files) {
    return Written(DrawLeaves(), files[0]);
}

int DrawPageInto(char **arguments) {
    return Written(DrawPage(Number(arguments[0])), arguments[1]);
}

int DrawLinesInto(char **arguments) {
    return Written(DrawLines(Number(arguments[0]), Number(arguments[1]), Number(arguments[2])), arguments[3]);
}

int AddDamage(char **arguments) {
    const auto *kind = std::find_if(std::begin(kDamage), std::end(kDamage), [=](const Damage &known) {
        return std::strcmp(known.name, arguments[0]) == 0;
    });
    if (kind == std::end(kDamage)) {
        for (const Damage &known : kDamage) {
            std::fprintf(stderr, "usage: chart damage %s %s CLEAN OUT\n", known.name, known.amount);
        }
        return 2;
    }
    PictureRGB picture;
    if (!ReadRGB(arguments[2], &picture)) {
        return TellVipsError();
    }
    kind->add(&picture, Number(arguments[1]));
    return Written(picture, arguments[3]);
}

// The plain median of each channel over 3 x 3 pixels, to compare with.
int Median(char **files) {
    VipsImage *picture = vips_image_new_from_file(files[0], nullptr);
    VipsImage *median = nullptr;
    const bool done = picture != nullptr && vips_median(picture, &median, 3, nullptr) == 0 &&
                      vips_image_write_to_file(median, files[1], nullptr) == 0;
    g_clear_object(&median);
    g_clear_object(&picture);
    return done ? 0 : TellVipsError();
}

// Reads both pictures of a comparison, which must be the same size.
bool ReadPair(char **files, PictureRGB *left, PictureRGB *right) {
    if (!ReadRGB(files[0], left) || !ReadRGB(files[1], right)) {
        return false;
    }
    if (left->width != right->width || left->height != right->height) {
        vips_error("chart", "%s and %s differ in size", files[0], files[1]);
        return false;
    }
    return true;
}

double SquaredError(const Pixel &a, const Pixel &b) {
    const double red = a.red - b.red;
    const double green = a.green - b.green;
    const double blue = a.blue - b.blue;
    return red * red + green * green + blue * blue;
}

int PrintPSNR(char **files) {
    PictureRGB clean, other;
    if (!ReadPair(files, &clean, &other)) {
        return TellVipsError();
    }
    double sum = 0;
    for (size_t i = 0; i < clean.pixels.size(); ++i) {
        sum += SquaredError(clean.pixels[i], other.pixels[i]);
    }
    const double mean = sum / (3.0 * static_cast<double>(clean.pixels.size()));
    std::printf("%.2f\n",
                mean > 0 ? 10 * std::log10(255.0 * 255.0 / mean) : std::numeric_limits<double>::infinity());
    return 0;
}

// Prints how many percent of the dark pixels of a drawing did not change. Those near its borders do not
// count.
int PrintKept(char **files) {
    constexpr int kBorder = 8;
    constexpr uint8_t kDark = 128;
    PictureRGB clean, other;
    if (!ReadPair(files, &clean, &other)) {
        return TellVipsError();
    }
    int dark = 0;
    int kept = 0;
    for (int y = kBorder; y < clean.height - kBorder; ++y) {
        for (int x = kBorder; x < clean.width - kBorder; ++x) {
            if (At(clean, x, y).red < kDark) {
                ++dark;
                kept += SquaredError(At(clean, x, y), At(other, x, y)) == 0 ? 1 : 0;
            }
        }
    }
    std::printf("%.0f\n", dark > 0 ? 100.0 * kept / dark : 100.0);
    return 0;
}

// Fills a larger picture with copies of a smaller one.
int Tile(char **arguments) {
    PictureRGB picture;
    const int width = Number(arguments[1]);
    const int height = Number(arguments[2]);
    if (width < 1 || height < 1) {
        std::fprintf(stderr, "chart: a picture of %s x %s pixels cannot be made\n", arguments[1],
                     arguments[2]);
        return 2;
    }
    if (!ReadRGB(arguments[0], &picture)) {
        return TellVipsError();
    }
    PictureRGB tiled = MakePicture(width, height, {255, 255, 255});
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            At(tiled, x, y) = At(picture, x % picture.width, y % picture.height);
        }
    }
    return Written(tiled, arguments[3]);
}

struct Command {
    const char *name;
    int arguments;
    const char *usage;
    int (*run)(char **arguments);
};

constexpr Command kCommands[] = {
    {"draw", 2, "CLEAN.png NOISY.png", Draw},
    {"leaves", 1, "CLEAN.png", DrawLeavesInto},
    {"page", 2, "STROKE CLEAN.png", DrawPageInto},
    {"lines", 4, "RIGHT DOWN WIDTH CLEAN.png", DrawLinesInto},
    {"damage", 4, "KIND AMOUNT CLEAN OUT", AddDamage},
    {"median", 2, "PICTURE OUT", Median},
    {"kept", 2, "CLEAN OTHER", PrintKept},
    {"psnr", 2, "CLEAN OTHER", PrintPSNR},
    {"tile", 4, "PICTURE WIDTH HEIGHT OUT", Tile},
};

int TellUsage() {
    for (const Command &command : kCommands) {
        std::fprintf(stderr, "usage: chart %s %s\n", command.name, command.usage);
    }
    return 2;
}

}  // namespace

int main(int count, char **arguments) {
    const auto *command = std::find_if(std::begin(kCommands), std::end(kCommands), [=](const Command &known) {
        return count > 1 && std::strcmp(known.name, arguments[1]) == 0;
    });
    if (command == std::end(kCommands) || count != 2 + command->arguments) {
        return TellUsage();
    }
    if (VIPS_INIT(arguments[0]) != 0) {
        return TellVipsError();
    }
    const int status = command->run(arguments + 2);
    vips_shutdown();
    return status;
}
