#include "host/picture/storage.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <vector>

#include "host/container/byte_order.h"
#include "host/container/container.h"
#include "host/container/jpeg_segments.h"
#include "host/container/png_chunks.h"
#include "host/container/tiff_directory.h"
#include "host/container/vp8_quantizer.h"
#include "host/container/webp_chunks.h"

const char *const kCompressionNames = "none, lzw, zip, packbits, zstd or group4";

namespace {

struct NamedCompression {
    const char *name;
    uint64_t tag;
    VipsForeignTiffCompression compression;
};
constexpr NamedCompression kCompressions[] = {
    {"none", 1, VIPS_FOREIGN_TIFF_COMPRESSION_NONE},
    {"lzw", 5, VIPS_FOREIGN_TIFF_COMPRESSION_LZW},
    {"zip", 8, VIPS_FOREIGN_TIFF_COMPRESSION_DEFLATE},
    {"packbits", 32773, VIPS_FOREIGN_TIFF_COMPRESSION_PACKBITS},
    {"zstd", 50000, VIPS_FOREIGN_TIFF_COMPRESSION_ZSTD},
    {"group4", 4, VIPS_FOREIGN_TIFF_COMPRESSION_CCITTFAX4},
    // Older ways to pack black and white.
    {nullptr, 2, VIPS_FOREIGN_TIFF_COMPRESSION_CCITTFAX4},
    {nullptr, 3, VIPS_FOREIGN_TIFF_COMPRESSION_CCITTFAX4},
};

constexpr uint64_t kWhiteIsZero = 0;
constexpr uint64_t kBlackIsZero = 1;
constexpr uint64_t kPalette = 3;
constexpr uint64_t kReduced = 1;  // a bit of a subfile's type
constexpr int kMaxLevels = 64;    // of a pyramid: each is smaller

uint64_t SideOf(const TiffDirectory &directory) {
    return std::max(NumberOf(directory, kTagImageWidth, 0), NumberOf(directory, kTagImageHeight, 0));
}

bool IsLevelBelow(const TiffDirectory &level, uint64_t side) {
    return (NumberOf(level, kTagNewSubfileType, 0) & kReduced) != 0 && SideOf(level) < side;
}

// Every further directory is a smaller copy of the one before.
bool HasLevelsBehind(const TiffSource &tiff, const TiffDirectory &first) {
    uint64_t side = SideOf(first);
    uint64_t next = first.next;
    for (int level = 0; next != 0; ++level) {
        TiffDirectory directory;
        bool whole = false;
        if (level == kMaxLevels || !ReadDirectory(tiff, next, &directory, &whole) ||
            !IsLevelBelow(directory, side)) {
            return false;
        }
        side = SideOf(directory);
        next = directory.next;
    }
    return first.next != 0;
}

bool HasLevelsBelow(const TiffDirectory &first) {
    const TiffEntry *levels = FindEntry(first, kTagSubIFDs);
    uint64_t side = SideOf(first);
    return levels != nullptr && first.next == 0 &&
           std::all_of(levels->children.begin(), levels->children.end(), [&](const TiffDirectory &level) {
               const bool below = IsLevelBelow(level, side);
               side = SideOf(level);
               return below;
           });
}

void TakeTiff(const ByteFile &file, Storage *storage) {
    TiffSource tiff;
    TiffDirectory first;
    bool whole = false;
    if (!OpenTiff(BytesOfFile(file), &tiff) || !ReadDirectory(tiff, tiff.first, &first, &whole)) {
        return;
    }
    const uint64_t bits = NumberOf(first, kTagBitsPerSample, 1);
    const uint64_t photometric = NumberOf(first, kTagPhotometric, kBlackIsZero);
    const bool grey = photometric <= kBlackIsZero && NumberOf(first, kTagSamplesPerPixel, 1) == 1;
    const uint64_t packed = NumberOf(first, kTagCompression, 1);
    const auto *known = std::find_if(std::begin(kCompressions), std::end(kCompressions),
                                     [=](const NamedCompression &entry) { return entry.tag == packed; });
    storage->bits = grey && (bits == 1 || bits == 2 || bits == 4) ? static_cast<int32_t>(bits) : 0;
    storage->palette = photometric == kPalette;
    storage->whiteIsZero = photometric == kWhiteIsZero;
    // JPEG in TIFF, and what else the library does not write without loss, becomes ZIP.
    const bool keeps = known != std::end(kCompressions);
    const uint64_t predictor = NumberOf(first, kTagPredictor, keeps ? 1 : 2);
    storage->compression = keeps ? known->compression : VIPS_FOREIGN_TIFF_COMPRESSION_DEFLATE;
    storage->predictor = static_cast<VipsForeignTiffPredictor>(std::clamp<uint64_t>(predictor, 1, 3));
    storage->tileWidth = static_cast<int32_t>(std::min<uint64_t>(NumberOf(first, kTagTileWidth, 0), 32768));
    storage->tileHeight = static_cast<int32_t>(std::min<uint64_t>(NumberOf(first, kTagTileHeight, 0), 32768));
    // Files whose tiles are of no lawful size are read all the same.
    storage->tiled = storage->tileWidth > 0 && storage->tileHeight > 0 && storage->tileWidth % 16 == 0 &&
                     storage->tileHeight % 16 == 0;
    storage->bigTiff = tiff.form.big;
    storage->subDirectories = HasLevelsBelow(first);
    storage->pyramid = storage->subDirectories || HasLevelsBehind(tiff, first);
}

// The standard's tables at quality 50, row by row.
constexpr uint8_t kStandardTables[2][64] = {
    {16, 11,  10,  16, 24, 40, 51, 61, 12,  12,  14,  19,  26, 58, 60, 55,  14,  13,  16,  24, 40, 57,
     69, 56,  14,  17, 22, 29, 51, 87, 80,  62,  18,  22,  37, 56, 68, 109, 103, 77,  24,  35, 55, 64,
     81, 104, 113, 92, 49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98,  112, 100, 103, 99},
    {17, 18, 24, 47, 99, 99, 99, 99, 18, 21, 26, 66, 99, 99, 99, 99, 24, 26, 56, 99, 99, 99,
     99, 99, 47, 66, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99,
     99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99}};
// The order in which files have them.
constexpr uint8_t kZigzag[64] = {0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,
                                 12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13, 6,  7,  14, 21, 28,
                                 35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
                                 58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

int ScaledTo(int quality, int standard) {
    const int percent = quality < 50 ? 5000 / quality : 200 - 2 * quality;
    return std::clamp((standard * percent + 50) / 100, 1, 255);
}

struct QuantisationTable {
    int number = 0;
    std::vector<int> values;
};

std::vector<QuantisationTable> TablesOf(const std::string &bytes) {
    std::vector<QuantisationTable> tables;
    for (size_t place = 0; place < bytes.size();) {
        const int head = static_cast<uint8_t>(bytes[place++]);
        const size_t size = (head >> 4) == 0 ? 1 : 2;
        if (bytes.size() - place < 64 * size) {
            break;
        }
        QuantisationTable table = {head & 3, {}};
        for (size_t i = 0; i < 64; ++i, place += size) {
            table.values.push_back(static_cast<int>(NumberAt(bytes, place, static_cast<int>(size), true)));
        }
        tables.push_back(table);
    }
    return tables;
}

// How far tables are from the standard's at a quality, in parts.
double DistanceAt(int quality, const std::vector<QuantisationTable> &tables) {
    double distance = 0;
    for (const QuantisationTable &table : tables) {
        for (size_t i = 0; i < 64; ++i) {
            const int standard = ScaledTo(quality, kStandardTables[std::min(table.number, 1)][kZigzag[i]]);
            distance += std::abs(std::log(static_cast<double>(std::max(table.values[i], 1)) / standard));
        }
    }
    return distance;
}

void TakeJpeg(const ByteFile &file, Storage *storage) {
    std::vector<JpegSegment> segments;
    uint64_t headBytes = 0;
    ReadJpegSegments(file, &segments, &headBytes);
    std::vector<QuantisationTable> tables;
    for (const auto &[marker, bytes] : segments) {
        if (marker == kJpegTables) {
            const std::vector<QuantisationTable> further = TablesOf(bytes);
            tables.insert(tables.end(), further.begin(), further.end());
        }
        // A frame: depth, height, width, number of components, and three bytes each.
        if ((marker & 0xF0) == 0xC0 && marker != 0xC4 && bytes.size() >= 12) {
            const auto first = static_cast<uint8_t>(bytes[7]);
            const auto second = static_cast<uint8_t>(bytes[10]);
            // Half in one direction only is not to be had, and becomes none.
            storage->subsampled = (first >> 4) > (second >> 4) && (first & 15) > (second & 15);
        }
        storage->progressive = storage->progressive || marker == 0xC2;
    }
    double least = HUGE_VAL;
    for (int quality = 1; quality <= 100 && !tables.empty(); ++quality) {
        if (const double distance = DistanceAt(quality, tables); distance <= least) {
            least = distance;
            storage->jpegQuality = quality;
        }
    }
}

void TakePng(const ByteFile &file, Storage *storage) {
    std::vector<PngChunk> chunks;
    uint64_t headBytes = 0;
    size_t headChunks = 0;
    bool whole = false;
    ReadPngChunks(file, &chunks, &headBytes, &headChunks, &whole);
    if (chunks.empty() || chunks.front().bytes.size() < 13) {
        return;
    }
    const auto bits = static_cast<uint8_t>(chunks.front().bytes[8]);
    const auto colors = static_cast<uint8_t>(chunks.front().bytes[9]);
    const bool clear =
        std::any_of(chunks.begin(), chunks.end(), [](const auto &chunk) { return chunk.type == "tRNS"; });
    storage->bits = colors == 0 && bits < 8 && !clear ? bits : 0;
    storage->palette = colors == 3;
    storage->interlaced = chunks.front().bytes[12] != 0;
}

// The encoder's way from a quality to quantizers, backwards. By its default a picture's finest and coarsest
// parts lie off the middle by an exponent, but one of the two always by the most; which one, the file does
// not say.
int32_t QualityOf(const Vp8Quantizers &quantizers) {
    constexpr double kFinest = 0.554, kCoarsest = 1.446;
    const double finest = std::log(1 - quantizers.finest / 128.0);
    const double coarsest = std::log(1 - quantizers.coarsest / 128.0);
    const bool even = quantizers.finest == quantizers.coarsest;
    const double middle = even ? finest : (finest / kFinest + coarsest / kCoarsest) / 2;
    const double linear = std::exp(3 * middle);
    const double part = linear < 0.5 ? linear * 1.5 : (linear + 1) / 2;
    return std::clamp(static_cast<int32_t>(std::lround(part * 100)), 1, 100);
}

void TakeWebp(const ByteFile &file, Storage *storage) {
    std::vector<WebpChunk> chunks;
    uint64_t headBytes = 0;
    bool whole = false;
    ReadWebpChunks(file, &chunks, &headBytes, &whole);
    for (const WebpChunk &chunk : chunks) {
        const auto quantizers = chunk.type == "VP8 " ? ReadVp8Quantizers(chunk.bytes) : std::nullopt;
        storage->webpQuality = quantizers ? QualityOf(*quantizers) : storage->webpQuality;
    }
}

constexpr struct {
    Container container;
    void (*take)(const ByteFile &file, Storage *storage);
} kTakers[] = {{Container::jpeg, TakeJpeg},
               {Container::png, TakePng},
               {Container::tiff, TakeTiff},
               {Container::webp, TakeWebp}};

}  // namespace

Storage StorageOf(const std::string &file) {
    Storage storage;
    ByteFile opened;
    const Container container = OpenForReading(file, &opened) ? ContainerOf(opened) : Container::other;
    for (const auto &taker : kTakers) {
        if (taker.container == container) {
            taker.take(opened, &storage);
        }
    }
    storage.palette = storage.palette || container == Container::gif;
    return storage;
}

void Choose(const StorageChoice &choice, Storage *storage) {
    if (choice.compression >= 0) {
        storage->compression = static_cast<VipsForeignTiffCompression>(choice.compression);
        // Differences of neighbours pack better than samples, but not single bits.
        storage->predictor =
            storage->bits > 0 ? VIPS_FOREIGN_TIFF_PREDICTOR_NONE : VIPS_FOREIGN_TIFF_PREDICTOR_HORIZONTAL;
    }
    if (choice.quality > 0) {
        storage->jpegQuality = choice.quality;
        storage->webpQuality = choice.quality;
        storage->heifQuality = choice.quality;
    }
}

int32_t CompressionNamed(const std::string &name) {
    const auto *known = std::find_if(
        std::begin(kCompressions), std::end(kCompressions),
        [&](const NamedCompression &entry) { return entry.name != nullptr && name == entry.name; });
    return known == std::end(kCompressions) ? -1 : known->compression;
}
