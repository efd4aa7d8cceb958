#include "host/picture/animated_png.h"

#include <cstdint>
#include <fstream>
#include <string_view>

namespace {

constexpr std::string_view kSignature("\x89PNG\r\n\x1A\n", 8);
constexpr std::string_view kAnimationControl = "acTL";  // begins with the number of frames
constexpr std::string_view kPixels = "IDAT";
constexpr std::streamoff kChecksumBytes = 4;

uint32_t BigEndian(const char *bytes) {
    uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
        value = value << 8 | static_cast<uint8_t>(bytes[i]);
    }
    return value;
}

}  // namespace

bool IsAnimatedPng(const std::string &file) {
    std::ifstream stream(file, std::ios::binary);
    char header[8] = {};
    stream.read(header, sizeof header);
    if (std::string_view(header, sizeof header) != kSignature) {
        return false;
    }
    // Each chunk: its length, its type, as many bytes, a checksum. The control stands before the pixels.
    while (stream.read(header, sizeof header)) {
        const std::string_view type(header + 4, 4);
        if (type == kAnimationControl) {
            char frames[4] = {};
            return stream.read(frames, sizeof frames) && BigEndian(frames) > 1;
        }
        if (type == kPixels) {
            return false;
        }
        stream.seekg(std::streamoff{BigEndian(header)} + kChecksumBytes, std::ios::cur);
    }
    return false;
}
