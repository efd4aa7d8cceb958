#include "host/picture/file_probe.h"

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

constexpr uint64_t kBitsPerSample = 258;  // a TIFF tag
constexpr uint64_t kBigVersion = 43;      // of BigTIFF; a classic TIFF has 42
constexpr uint64_t kShortBytes = 2;       // of one value of that tag

// What differs between classic TIFF and BigTIFF.
struct Layout {
    uint64_t directoryPlace;
    int offsetBytes;
    int countBytes;  // of a directory's entry count
};
constexpr Layout kClassic = {4, 4, 2};
constexpr Layout kBig = {8, 8, 8};

struct Reader {
    std::ifstream stream;
    bool bigEndian = false;

    uint64_t Number(uint64_t place, int bytes) {
        uint8_t read[8] = {};
        stream.seekg(static_cast<std::streamoff>(place));
        stream.read(reinterpret_cast<char *>(read), bytes);
        uint64_t number = 0;
        for (int i = 0; i < bytes; ++i) {
            number = number << 8 | read[bigEndian ? i : bytes - 1 - i];
        }
        return number;
    }
};

// An entry is a tag and a type of two bytes each, the number of values, and the values themselves, or their
// offset if they do not fit.
int32_t DepthOfEntry(Reader *reader, const Layout &layout, uint64_t entry) {
    const auto offsetBytes = static_cast<uint64_t>(layout.offsetBytes);
    const uint64_t values = reader->Number(entry + 4, layout.offsetBytes);
    const uint64_t inEntry = entry + 4 + offsetBytes;
    const bool fit = values * kShortBytes <= offsetBytes;
    const uint64_t place = fit ? inEntry : reader->Number(inEntry, layout.offsetBytes);
    return static_cast<int32_t>(reader->Number(place, kShortBytes));
}

}  // namespace

bool IsAnimatedPng(const std::string &file) {
    std::ifstream stream(file, std::ios::binary);
    char header[8] = {};
    stream.read(header, sizeof header);
    if (std::string_view(header, sizeof header) != kSignature) {
        return false;
    }
    // A chunk is a length, a type, that many bytes, and a checksum. The animation control comes before the
    // pixels.
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

int32_t TiffDepth(const std::string &file) {
    Reader reader = {std::ifstream(file, std::ios::binary)};
    const uint64_t order = reader.Number(0, 2);
    if (!reader.stream || (order != 0x4949 && order != 0x4D4D)) {
        return 0;
    }
    reader.bigEndian = order == 0x4D4D;
    const Layout &layout = reader.Number(2, 2) == kBigVersion ? kBig : kClassic;
    const uint64_t directory = reader.Number(layout.directoryPlace, layout.offsetBytes);
    const uint64_t entries = reader.Number(directory, layout.countBytes);
    const uint64_t entryBytes = 4 + 2 * static_cast<uint64_t>(layout.offsetBytes);
    uint64_t entry = directory + static_cast<uint64_t>(layout.countBytes);
    for (uint64_t i = 0; reader.stream && i < entries; ++i, entry += entryBytes) {
        if (reader.Number(entry, 2) == kBitsPerSample) {
            const int32_t depth = DepthOfEntry(&reader, layout, entry);
            return reader.stream ? depth : 0;
        }
    }
    return 0;
}
