#include "host/picture/picture_format.h"

#include <strings.h>
#include <vips/vips.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <utility>

#include "host/container/container.h"
#include "host/document/document_mode.h"
#include "host/picture/netpbm.h"
#include "host/picture/vips_library.h"

namespace {

// Of samples; half of the 4 GiB that a classic TIFF can address is left for metadata and tables.
constexpr uint64_t kMaxClassicTiffBytes = 2'000'000'000;
// Chosen: a progressive JPEG or an interlaced PNG needs all of a picture in memory, 3 to 8 bytes a pixel.
constexpr int64_t kMaxHeldPixels = 50'000'000;
constexpr int kZstdLevel = 9;
constexpr int kTileSide = 256;  // of pyramids out of strips
// Chosen: small enough for the library's buffer of a strip not to count, large enough to be compressed well.
constexpr uint64_t kStripBytes = 1'000'000;
constexpr uint64_t kMaxStripRows = 256;

// Chosen: a level and a row filter that cost about as much as the noise filter at radius 2. A level that the
// user asks for comes with the choice among all row filters, which gives the smallest files.
constexpr int32_t kQuickLevel = 1;
constexpr int kQuickFilter = VIPS_FOREIGN_PNG_FILTER_UP;

// Few bits a sample are for pictures of one grey channel; the library would round others.
int BitsFor(VipsImage *image, const Storage &storage) {
    const bool grey = vips_image_get_bands(image) == 1 && vips_image_get_format(image) == VIPS_FORMAT_UCHAR;
    return grey ? storage.bits : 0;
}

bool IsSmall(VipsImage *image) {
    return int64_t{vips_image_get_width(image)} * vips_image_get_height(image) <= kMaxHeldPixels;
}

int SavePng(VipsImage *image, const char *path, const Storage &storage, const SaveOptions &options) {
    const int few = BitsFor(image, storage);
    const int bits = few > 0 ? few : vips_image_get_format(image) == VIPS_FORMAT_USHORT ? 16 : 8;
    return vips_pngsave(image, path, "bitdepth", bits, "compression",
                        options.compressionLevel.value_or(kQuickLevel), "filter",
                        options.compressionLevel ? VIPS_FOREIGN_PNG_FILTER_ALL : kQuickFilter, "interlace",
                        static_cast<gboolean>(storage.interlaced && IsSmall(image)), "strip", TRUE, nullptr);
}

// In one pass, with the standard's own Huffman tables, unless the input was progressive: tables made for the
// picture would save a few percent, but take all of it in memory.
int SaveJpeg(VipsImage *image, const char *path, const Storage &storage, const SaveOptions &) {
    return vips_jpegsave(image, path, "Q", storage.jpegQuality, "subsample_mode",
                         storage.subsampled ? VIPS_FOREIGN_SUBSAMPLE_ON : VIPS_FOREIGN_SUBSAMPLE_OFF,
                         "interlace", static_cast<gboolean>(storage.progressive && IsSmall(image)), "strip",
                         TRUE, nullptr);
}

uint64_t BytesOfRow(VipsImage *image) {
    return static_cast<uint64_t>(vips_image_get_width(image)) *
           static_cast<uint64_t>(vips_image_get_bands(image)) *
           vips_format_sizeof(vips_image_get_format(image));
}

// Or of a strip.
int RowsOfTile(VipsImage *image, const Storage &storage) {
    if (storage.tiled || storage.pyramid) {
        return storage.tiled ? storage.tileHeight : kTileSide;
    }
    return static_cast<int>(std::clamp<uint64_t>(kStripBytes / BytesOfRow(image), 1, kMaxStripRows));
}

int SaveTiff(VipsImage *image, const char *path, const Storage &storage, const SaveOptions &) {
    const bool large =
        BytesOfRow(image) * static_cast<uint64_t>(vips_image_get_height(image)) > kMaxClassicTiffBytes;
    const bool tiled = storage.tiled || storage.pyramid;
    const int bits = BitsFor(image, storage);
    return vips_tiffsave(image, path, "compression", storage.compression, "predictor", storage.predictor,
                         "level", kZstdLevel, "tile", static_cast<gboolean>(tiled), "tile_width",
                         storage.tiled ? storage.tileWidth : kTileSide, "tile_height",
                         RowsOfTile(image, storage), "pyramid", static_cast<gboolean>(storage.pyramid),
                         "subifd", static_cast<gboolean>(storage.subDirectories), "bitdepth", bits,
                         "miniswhite", static_cast<gboolean>(bits > 0 && storage.whiteIsZero), "bigtiff",
                         static_cast<gboolean>(large || storage.bigTiff), "strip", TRUE, nullptr);
}

int SaveWebp(VipsImage *image, const char *path, const Storage &storage, const SaveOptions &) {
    const bool lossless = storage.webpQuality == 0;
    return vips_webpsave(image, path, "lossless", static_cast<gboolean>(lossless), "Q",
                         lossless ? 75 : storage.webpQuality, "strip", TRUE, nullptr);
}

int SaveHeif(VipsImage *image, const char *path, const Storage &storage,
             VipsForeignHeifCompression compression) {
    return vips_heifsave(image, path, "compression", compression, "Q", storage.heifQuality, "strip", TRUE,
                         nullptr);
}

int SaveHeic(VipsImage *image, const char *path, const Storage &storage, const SaveOptions &) {
    return SaveHeif(image, path, storage, VIPS_FOREIGN_HEIF_COMPRESSION_HEVC);
}

int SaveAvif(VipsImage *image, const char *path, const Storage &storage, const SaveOptions &) {
    return SaveHeif(image, path, storage, VIPS_FOREIGN_HEIF_COMPRESSION_AV1);
}

constexpr int32_t kMaxJpegSide = 65500;  // the limit of the JPEG library
constexpr int32_t kMaxWebpSide = 16383;  // WebP stores sides in 14 bits
constexpr int32_t kMaxHeifSide = 16384;  // what encoders and decoders agree on

// Colour spaces other than grey and RGB.
constexpr std::string_view kNoOther;
constexpr std::string_view kAlsoCMYK = "CMYK";
constexpr std::string_view kAlsoLabAndCMYK = "Lab CMYK";

int SavePpmOf(VipsImage *image, const char *path, const Storage &, const SaveOptions &) {
    return SavePpm(image, path);
}

int SavePamOf(VipsImage *image, const char *path, const Storage &, const SaveOptions &) {
    return SavePam(image, path);
}

constexpr PictureFormat kFormats[] = {
    {"PNG", {".png"}, 16, 1, VIPS_MAX_COORD, kNoOther, false, false, SavePng},
    {"JPEG", {".jpg", ".jpeg"}, 8, 0, kMaxJpegSide, kAlsoCMYK, false, false, SaveJpeg},
    {"TIFF", {".tif", ".tiff"}, 32, kMaxPlanes, VIPS_MAX_COORD, kAlsoLabAndCMYK, false, false, SaveTiff},
    {"WebP", {".webp"}, 8, 1, kMaxWebpSide, kNoOther, true, false, SaveWebp},
    {"PPM", {".ppm", ".pgm", ".pnm"}, 16, 0, VIPS_MAX_COORD, kNoOther, false, false, SavePpmOf},
    {"HEIC", {".heic", ".heif"}, 8, 1, kMaxHeifSide, kNoOther, true, true, SaveHeic},
    {"AVIF", {".avif"}, 8, 1, kMaxHeifSide, kNoOther, true, true, SaveAvif},
    {"PAM", {".pam"}, 16, 1, VIPS_MAX_COORD, kNoOther, false, false, SavePamOf},
};

constexpr std::string_view kEverywhere[] = {"grey", "RGB"};

bool HoldsColors(const PictureFormat &format, const Document &document) {
    const std::string_view space = ModeOf(document.imageMode).colors;
    return format.furtherSpaces.find(space) != std::string_view::npos ||
           std::find(std::begin(kEverywhere), std::end(kEverywhere), space) != std::end(kEverywhere);
}

int32_t ExtraPlanes(const Document &document) {
    return document.planes - document.colorPlanes;
}

// Formats that only hold one extra channel take it for transparency.
bool HoldsKinds(const PictureFormat &format, const Document &document) {
    return format.maxExtraPlanes > 1 || ExtraPlanes(document) == 0 || document.transparency != 0;
}

int32_t LongerSide(const Document &document) {
    return std::max(document.width, document.height);
}

// Those that not every machine has are not proposed.
bool Holds(const PictureFormat &format, const Document &document) {
    return !format.needsHeif && HoldsColors(format, document) && document.depth <= format.maxDepth &&
           ExtraPlanes(document) <= format.maxExtraPlanes && HoldsKinds(format, document) &&
           LongerSide(document) <= format.maxSide;
}

// ".png or .tif"
std::string SuffixesThatHold(const Document &document) {
    std::string list;
    for (const PictureFormat &format : kFormats) {
        if (Holds(format, document)) {
            list += (list.empty() ? "" : " or ") + std::string(format.suffixes[0]);
        }
    }
    return list;
}

bool HasSuffix(const PictureFormat &format, const std::string &suffix) {
    return std::any_of(std::begin(format.suffixes), std::end(format.suffixes), [&](const char *known) {
        return known != nullptr && strcasecmp(known, suffix.c_str()) == 0;
    });
}

}  // namespace

int32_t FormatNamed(const std::string &suffix) {
    const auto *found =
        std::find_if(std::begin(kFormats), std::end(kFormats),
                     [&](const PictureFormat &known) { return HasSuffix(known, '.' + suffix); });
    return found == std::end(kFormats) ? kFormatOfName : static_cast<int32_t>(found - std::begin(kFormats));
}

int32_t FormatOfContent(const std::string &file) {
    constexpr std::pair<Container, const char *> kSuffixes[] = {{Container::png, "png"},
                                                                {Container::jpeg, "jpg"},
                                                                {Container::tiff, "tif"},
                                                                {Container::webp, "webp"}};
    ByteFile opened;
    const Container container = OpenForReading(file, &opened) ? ContainerOf(opened) : Container::other;
    const auto *found = std::find_if(std::begin(kSuffixes), std::end(kSuffixes),
                                     [=](const auto &known) { return known.first == container; });
    return found == std::end(kSuffixes) ? kFormatOfName : FormatNamed(found->second);
}

MaybeFailure FindFormat(const std::string &file, int32_t chosen, const PictureFormat **format) {
    if (chosen != kFormatOfName) {
        *format = &kFormats[chosen];
        return std::nullopt;
    }
    const std::string suffix = std::filesystem::path(file).extension();
    const auto *found = std::find_if(std::begin(kFormats), std::end(kFormats),
                                     [&](const PictureFormat &known) { return HasSuffix(known, suffix); });
    if (found == std::end(kFormats)) {
        const char *reason = strcasecmp(suffix.c_str(), ".gif") == 0 ? ": GIF is only read" : "";
        return Failure{
            kExitUsage,
            file + reason +
                ": the output's name must end in .png, .jpg, .tif, .webp, .heic, .avif, .ppm or .pam."};
    }
    *format = found;
    return std::nullopt;
}

bool IsTiff(const std::string &file, int32_t chosen) {
    const PictureFormat *format = nullptr;
    return !FindFormat(file, chosen, &format) && format->save == SaveTiff;
}

MaybeFailure CheckChoice(const StorageChoice &choice, const PictureFormat &format, const Storage &storage,
                         const std::string &outputFile) {
    const bool compressed = format.save == SaveTiff;
    const bool graded = format.save == SaveJpeg || format.save == SaveWebp || format.needsHeif;
    if (choice.compression >= 0 && !compressed) {
        return Failure{kExitUsage, outputFile + ": --compression is for TIFF."};
    }
    if (choice.quality > 0 && !graded) {
        return Failure{kExitUsage, outputFile + ": --quality is for JPEG, WebP, HEIC and AVIF."};
    }
    if (choice.compression == VIPS_FOREIGN_TIFF_COMPRESSION_CCITTFAX4 && storage.bits != 1) {
        return Failure{kExitUsage, outputFile + ": --compression group4 is for pictures of one bit a pixel."};
    }
    return std::nullopt;
}

MaybeFailure CheckFormatHolds(const PictureFormat &format, const Document &document,
                              const std::string &inputFile, const std::string &outputFile) {
    if (format.needsHeif && !HasHeif()) {
        return FileFailure(outputFile, kNoHeif);
    }
    const struct {
        bool refused;
        std::string what;
    } checks[] = {
        {!HoldsColors(format, document), std::string(ModeOf(document.imageMode).colors) + " colours"},
        {document.depth > format.maxDepth, std::to_string(document.depth) + "-bit samples"},
        {ExtraPlanes(document) > format.maxExtraPlanes,
         ExtraPlanes(document) == 1 ? "extra channel"
                                    : std::to_string(ExtraPlanes(document)) + " extra channels"},
        {!HoldsKinds(format, document), "channel that is not transparency"},
        {LongerSide(document) > format.maxSide,
         "side of " + std::to_string(LongerSide(document)) + " pixels"},
    };
    for (const auto &[refused, what] : checks) {
        if (refused) {
            std::string reason = "its " + what;
            reason.append(" would not fit into ").append(outputFile);
            reason.append(", as ").append(format.name).append(" cannot hold that; choose ");
            return FileFailure(inputFile, reason + SuffixesThatHold(document));
        }
    }
    return std::nullopt;
}
