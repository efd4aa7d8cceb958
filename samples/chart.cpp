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
#include "samples/noise.h"
#include "samples/picture_rgb.h"

namespace {

int TellVipsError() {
    std::fprintf(stderr, "chart: %s", vips_error_buffer());
    return 1;
}

int Draw(char **files) {
    const PictureRGB chart = DrawChart();
    return WriteRGB(chart, files[0]) && WriteRGB(AddNoise(chart), files[1]) ? 0 : TellVipsError();
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

// Fills a larger picture with copies of a smaller one.
int Tile(char **arguments) {
    PictureRGB picture;
    const auto width = static_cast<int>(std::strtol(arguments[1], nullptr, 10));
    const auto height = static_cast<int>(std::strtol(arguments[2], nullptr, 10));
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
    return WriteRGB(tiled, arguments[3]) ? 0 : TellVipsError();
}

struct Command {
    const char *name;
    int arguments;
    const char *usage;
    int (*run)(char **arguments);
};

constexpr Command kCommands[] = {
    {"draw", 2, "CLEAN.png NOISY.png", Draw},
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
