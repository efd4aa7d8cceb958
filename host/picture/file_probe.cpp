#include "host/picture/file_probe.h"

#include <algorithm>
#include <fstream>
#include <optional>
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

// TIFF tags and types.
constexpr uint64_t kBitsPerSample = 258;
constexpr uint64_t kRowsPerStrip = 278;
constexpr uint64_t kTileLength = 323;
constexpr uint64_t kShort = 3;
constexpr uint64_t kLong8 = 16;
constexpr uint64_t kBigVersion = 43;  // of BigTIFF; a classic TIFF has 42

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

int BytesOfType(uint64_t type) {
    return type == kShort ? 2 : type == kLong8 ? 8 : 4;
}

// An entry is a tag and a type of two bytes each, the number of values, and the values themselves, or their
// offset if they do not fit.
uint64_t FirstValue(Reader *reader, const Layout &layout, uint64_t entry) {
    const int bytes = BytesOfType(reader->Number(entry + 2, 2));
    const auto offsetBytes = static_cast<uint64_t>(layout.offsetBytes);
    const uint64_t values = reader->Number(entry + 4, layout.offsetBytes);
    const uint64_t inEntry = entry + 4 + offsetBytes;
    const bool fit = values * static_cast<uint64_t>(bytes) <= offsetBytes;
    return reader->Number(fit ? inEntry : reader->Number(inEntry, layout.offsetBytes), bytes);
}

// The first value of an entry on the first page; none for missing entries, and for other or damaged files.
std::optional<uint64_t> TiffValue(const std::string &file, uint64_t tag) {
    Reader reader = {std::ifstream(file, std::ios::binary)};
    const uint64_t order = reader.Number(0, 2);
    if (!reader.stream || (order != 0x4949 && order != 0x4D4D)) {
        return std::nullopt;
    }
    reader.bigEndian = order == 0x4D4D;
    const Layout &layout = reader.Number(2, 2) == kBigVersion ? kBig : kClassic;
    const uint64_t directory = reader.Number(layout.directoryPlace, layout.offsetBytes);
    const uint64_t entries = reader.Number(directory, layout.countBytes);
    const uint64_t entryBytes = 4 + 2 * static_cast<uint64_t>(layout.offsetBytes);
    uint64_t entry = directory + static_cast<uint64_t>(layout.countBytes);
    for (uint64_t i = 0; reader.stream && i < entries; ++i, entry += entryBytes) {
        if (reader.Number(entry, 2) == tag) {
            const uint64_t value = FirstValue(&reader, layout, entry);
            return reader.stream ? std::optional(value) : std::nullopt;
        }
    }
    return std::nullopt;
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
    return static_cast<int32_t>(TiffValue(file, kBitsPerSample).value_or(0));
}

int64_t TiffStripRows(const std::string &file) {
    const uint64_t rows =
        TiffValue(file, kTileLength).value_or(TiffValue(file, kRowsPerStrip).value_or(UINT32_MAX));
    return static_cast<int64_t>(std::min<uint64_t>(rows, UINT32_MAX));
}
