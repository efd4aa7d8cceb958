#include "host/picture/picture_format.h"

#include <strings.h>
#include <vips/vips.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "host/document/document_mode.h"

namespace {

constexpr int kJpegQuality = 95;  // of 100; chosen to lose little of what the filter has kept
// Of samples; half of the 4 GiB that a classic TIFF can address is left for metadata and tables.
constexpr uint64_t kMaxClassicTiffBytes = 2'000'000'000;

// Chosen: a level and a row filter that cost about as much as the noise filter at radius 2. A level that the
// user asks for comes with the choice among all row filters, which gives the smallest files.
constexpr int32_t kQuickLevel = 1;
constexpr int kQuickFilter = VIPS_FOREIGN_PNG_FILTER_UP;

int SavePng(VipsImage *image, const char *path, const SaveOptions &options) {
    const int bits = vips_image_get_format(image) == VIPS_FORMAT_USHORT ? 16 : 8;
    return vips_pngsave(image, path, "bitdepth", bits, "compression",
                        options.compressionLevel.value_or(kQuickLevel), "filter",
                        options.compressionLevel ? VIPS_FOREIGN_PNG_FILTER_ALL : kQuickFilter, nullptr);
}

// With the standard's own Huffman tables: tables made for the picture would save a few percent, but take all
// of it in memory.
int SaveJpeg(VipsImage *image, const char *path, const SaveOptions &) {
    return vips_jpegsave(image, path, "Q", kJpegQuality, "subsample_mode", VIPS_FOREIGN_SUBSAMPLE_OFF,
                         nullptr);
}

int SaveTiff(VipsImage *image, const char *path, const SaveOptions &) {
    const uint64_t samples = static_cast<uint64_t>(vips_image_get_width(image)) *
                             static_cast<uint64_t>(vips_image_get_height(image)) *
                             static_cast<uint64_t>(vips_image_get_bands(image));
    const gboolean big = samples * vips_format_sizeof(vips_image_get_format(image)) > kMaxClassicTiffBytes;
    return vips_tiffsave(image, path, "bigtiff", big, nullptr);
}

int SaveWebp(VipsImage *image, const char *path, const SaveOptions &) {
    return vips_webpsave(image, path, "lossless", TRUE, nullptr);
}

constexpr int32_t kMaxJpegSide = 65500;  // the limit of the JPEG library
constexpr int32_t kMaxWebpSide = 16383;  // WebP stores sides in 14 bits

// Colour spaces other than grey and RGB.
constexpr std::string_view kNoOther;
constexpr std::string_view kAlsoCMYK = "CMYK";
constexpr std::string_view kAlsoLabAndCMYK = "Lab CMYK";

constexpr PictureFormat kFormats[] = {
    {"PNG",
     {".png", nullptr},
     16,
     1,
     VIPS_MAX_COORD,
     kNoOther,
     {VIPS_META_IPTC_NAME, "IPTC"},
     false,
     SavePng},
    {"JPEG", {".jpg", ".jpeg"}, 8, 0, kMaxJpegSide, kAlsoCMYK, {nullptr, nullptr}, false, SaveJpeg},
    {"TIFF",
     {".tif", ".tiff"},
     32,
     kMaxPlanes,
     VIPS_MAX_COORD,
     kAlsoLabAndCMYK,
     {VIPS_META_EXIF_NAME, "EXIF"},
     false,
     SaveTiff},
    {"WebP", {".webp", nullptr}, 8, 1, kMaxWebpSide, kNoOther, {VIPS_META_IPTC_NAME, "IPTC"}, true, SaveWebp},
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

bool Holds(const PictureFormat &format, const Document &document) {
    return HoldsColors(format, document) && document.depth <= format.maxDepth &&
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

MaybeFailure FindFormat(const std::string &file, const PictureFormat **format) {
    const std::string suffix = std::filesystem::path(file).extension();
    const auto *found = std::find_if(std::begin(kFormats), std::end(kFormats),
                                     [&](const PictureFormat &known) { return HasSuffix(known, suffix); });
    if (found == std::end(kFormats)) {
        return Failure{kExitUsage, file + ": the output's name must end in .png, .jpg, .tif or .webp."};
    }
    *format = found;
    return std::nullopt;
}

MaybeFailure CheckFormatHolds(const PictureFormat &format, const Document &document,
                              const std::string &inputFile, const std::string &outputFile) {
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

std::string LostMetadata(const PictureFormat &format, _VipsImage *metadata) {
    const auto &[field, name] = format.lost;
    return field != nullptr && vips_image_get_typeof(metadata, field) != 0 ? name : "";
}
