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
constexpr uint64_t kColors = 262;
constexpr uint64_t kSampleFormat = 339;
constexpr uint64_t kUnsigned = 1;
constexpr uint64_t kSigned = 2;
constexpr uint64_t kExtraSamples = 338;
// Values of kColors.
constexpr uint64_t kRGBColors = 2;
constexpr uint64_t kLabColors = 8;
// More values than any picture here can have; a damaged file may state any number.
constexpr uint64_t kMaxValues = 256;
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

// Where a tag's values are.
struct Values {
    uint64_t place = 0;
    uint64_t count = 0;  // 0 if the tag is missing
    int bytes = 0;       // of each
};

// An entry is a tag and a type of two bytes each, the number of values, and the values themselves, or their
// offset if they do not fit.
Values ValuesOfEntry(Reader *reader, const Layout &layout, uint64_t entry) {
    const int bytes = BytesOfType(reader->Number(entry + 2, 2));
    const auto offsetBytes = static_cast<uint64_t>(layout.offsetBytes);
    const uint64_t count = std::min(reader->Number(entry + 4, layout.offsetBytes), kMaxValues);
    const uint64_t inEntry = entry + 4 + offsetBytes;
    const bool fit = count * static_cast<uint64_t>(bytes) <= offsetBytes;
    return {fit ? inEntry : reader->Number(inEntry, layout.offsetBytes), count, bytes};
}

// Looks through the first page's directory.
Values FindTag(const std::string &file, uint64_t tag, Reader *reader) {
    *reader = {std::ifstream(file, std::ios::binary)};
    const uint64_t order = reader->Number(0, 2);
    if (!reader->stream || (order != 0x4949 && order != 0x4D4D)) {
        return {};
    }
    reader->bigEndian = order == 0x4D4D;
    const Layout &layout = reader->Number(2, 2) == kBigVersion ? kBig : kClassic;
    const uint64_t directory = reader->Number(layout.directoryPlace, layout.offsetBytes);
    const uint64_t entries = reader->Number(directory, layout.countBytes);
    const uint64_t entryBytes = 4 + 2 * static_cast<uint64_t>(layout.offsetBytes);
    uint64_t entry = directory + static_cast<uint64_t>(layout.countBytes);
    for (uint64_t i = 0; reader->stream && i < entries; ++i, entry += entryBytes) {
        if (reader->Number(entry, 2) == tag) {
            const Values values = ValuesOfEntry(reader, layout, entry);
            return reader->stream ? values : Values{};
        }
    }
    return {};
}

// One of a tag's values.
uint64_t ValueAt(Reader *reader, const Values &values, uint64_t index) {
    return reader->Number(values.place + index * static_cast<uint64_t>(values.bytes), values.bytes);
}

// The first value; none for missing tags, and for other or damaged files.
std::optional<uint64_t> TiffValue(const std::string &file, uint64_t tag) {
    Reader reader;
    const Values values = FindTag(file, tag, &reader);
    const uint64_t value = values.count == 0 ? 0 : ValueAt(&reader, values, 0);
    return values.count != 0 && reader.stream ? std::optional(value) : std::nullopt;
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

std::vector<uint16_t> TiffExtraSamples(const std::string &file) {
    Reader reader;
    const Values values = FindTag(file, kExtraSamples, &reader);
    std::vector<uint16_t> kinds;
    for (uint64_t i = 0; i < values.count; ++i) {
        kinds.push_back(static_cast<uint16_t>(ValueAt(&reader, values, i)));
    }
    return reader.stream ? kinds : std::vector<uint16_t>();
}

bool ChangeTiffExtraSamples(const std::string &file, const std::vector<uint16_t> &kinds) {
    Reader reader;
    const Values values = FindTag(file, kExtraSamples, &reader);
    if (values.count != kinds.size() || values.bytes != 2) {
        return false;
    }
    std::string bytes;
    for (const uint16_t kind : kinds) {
        const char low = static_cast<char>(kind);
        const char high = static_cast<char>(kind >> 8);
        bytes += reader.bigEndian ? std::string{high, low} : std::string{low, high};
    }
    std::fstream stream(file, std::ios::binary | std::ios::in | std::ios::out);
    stream.seekp(static_cast<std::streamoff>(values.place));
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return static_cast<bool>(stream.flush());
}

bool IsLabTiff(const std::string &file) {
    return TiffValue(file, kColors) == kLabColors;
}

std::vector<BytePatch> PatchesForRawSamples(const std::string &file) {
    constexpr struct {
        uint64_t tag, value, shown;
        bool ofLab;
    } kShown[] = {{kColors, kLabColors, kRGBColors, true},
                  // Only a and b are signed, and some writers say so of all samples.
                  {kSampleFormat, kSigned, kUnsigned, true},
                  {kExtraSamples, kAssociatedAlpha, kUnassociatedAlpha, false}};
    const bool lab = IsLabTiff(file);
    std::vector<BytePatch> patches;
    for (const auto &[tag, value, shown, ofLab] : kShown) {
        if (ofLab && !lab) {
            continue;
        }
        Reader reader;
        const Values values = FindTag(file, tag, &reader);
        for (uint64_t i = 0; i < values.count; ++i) {
            const uint64_t place = values.place + i * static_cast<uint64_t>(values.bytes);
            if (ValueAt(&reader, values, i) == value && reader.stream) {
                patches.push_back(
                    {static_cast<int64_t>(place +
                                          (reader.bigEndian ? static_cast<uint64_t>(values.bytes) - 1 : 0)),
                     static_cast<uint8_t>(shown)});
            }
        }
    }
    return patches;
}
