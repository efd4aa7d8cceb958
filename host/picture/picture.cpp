#include "host/picture/picture.h"

#include <sys/stat.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <vector>

#include "host/picture/file_probe.h"
#include "host/picture/netpbm.h"
#include "host/picture/picture_mode.h"
#include "host/picture/picture_samples.h"
#include "host/picture/raw_source.h"
#include "host/picture/unsupported.h"
#include "platform/native_paths.h"

namespace {

// Read at a time: at most this many rows and, beyond one row, this many bytes. Chosen: quickly read, and
// little memory.
constexpr int32_t kStripHeight = 64;
constexpr int64_t kStripBytes = 4'000'000;
// A TIFF's strips or rows of tiles, each of which the picture library reads at once, count as short up to
// this size.
constexpr int64_t kMaxStripBytes = 64'000'000;
constexpr double kMillimetersPerInch = 25.4;
constexpr double kMaxResolution = 32767;  // what fits in a Fixed

// The loaders in use, by the library's names. Its other loaders never see untrusted files.
constexpr std::string_view kLoaders[] = {
    "VipsForeignLoadPngSource",  "VipsForeignLoadJpegSource",  "VipsForeignLoadTiffSource",
    "VipsForeignLoadWebpSource", "VipsForeignLoadNsgifSource", "VipsForeignLoadHeifSource",
};

// Header fields, which every image has for itself, and traces of the encoding, which an output must not
// repeat: a palette picture, for example, has no palette any more once it is filtered.
constexpr std::string_view kNotCopied[] = {
    "width",
    "height",
    "bands",
    "format",
    "coding",
    "interpretation",
    "xoffset",
    "yoffset",
    "xres",
    "yres",
    "filename",
    "vips-loader",
    "palette",
    "palette-bit-depth",
    "gif-palette",
    "bits-per-sample",
    "vips-sequential",
    "interlaced",
    "jpeg-multiscan",
    "jpeg-chroma-subsample",
};

bool IsAmong(const std::string_view *begin, const std::string_view *end, std::string_view name) {
    return std::find(begin, end, name) != end;
}

// The EXIF data of a HEIC picture are gone with the image that has them: bytes are copied.
void *CopyField(VipsImage *, const char *name, GValue *value, void *target) {
    auto *to = static_cast<VipsImage *>(target);
    if (IsAmong(std::begin(kNotCopied), std::end(kNotCopied), name)) {
        return nullptr;
    }
    if (G_VALUE_HOLDS(value, VIPS_TYPE_BLOB)) {
        size_t size = 0;
        const void *bytes = vips_value_get_blob(value, &size);
        vips_image_set_blob_copy(to, name, bytes, size);
    } else {
        vips_image_set(to, name, value);
    }
    return nullptr;
}

MaybeFailure CheckFile(const std::string &file) {
    struct stat info;
    if (stat(file.c_str(), &info) != 0) {
        const int error = errno;
        return FileFailure(file, error == ENOENT ? "no such file" : std::strerror(error));
    }
    if (S_ISDIR(info.st_mode)) {
        return FileFailure(file, "this is a folder, not a picture; --recursive takes the pictures in it");
    }
    if (!S_ISREG(info.st_mode)) {
        return FileFailure(file, "this is not a regular file");
    }
    return std::nullopt;
}

MaybeFailure Unreadable(const std::string &file) {
    return FileFailure(file, "cannot be read: " + TakeVipsError());
}

MaybeFailure OpenImage(const std::string &file, OwnedObject<VipsImage> *image) {
    if (const std::string why = WhyUnsupported(file); !why.empty()) {
        return FileFailure(file, why);
    }
    if (MaybeFailure failure = OpenNetpbm(file, image); failure || *image != nullptr) {
        return failure;
    }
    const OwnedObject<VipsSource> source = OpenRawSource(file);
    if (source == nullptr) {
        return Unreadable(file);
    }
    const char *loader = vips_foreign_find_load_source(source.get());
    if (loader == nullptr || !IsAmong(std::begin(kLoaders), std::end(kLoaders), loader)) {
        vips_error_clear();
        return FileFailure(file,
                           "this is no readable PNG, JPEG, TIFF, WebP, HEIC, AVIF, PPM, PAM or GIF picture");
    }
    image->reset(vips_image_new_from_source(source.get(), "", "access", VIPS_ACCESS_SEQUENTIAL, "fail_on",
                                            VIPS_FAIL_ON_TRUNCATED, nullptr));
    if (*image != nullptr && IsLabTiff(file)) {
        VipsImage *lab = nullptr;
        vips_copy(image->get(), &lab, "interpretation", VIPS_INTERPRETATION_LAB, nullptr);
        image->reset(lab);
    }
    if (*image != nullptr) {
        return std::nullopt;
    }
    // Only headers have been read so far. If one is broken, the PNG loader gives no message.
    const bool silent = *vips_error_buffer() == '\0';
    return silent ? FileFailure(file, "cannot be read: its header is damaged or cut short")
                  : Unreadable(file);
}

int32_t IntegerField(VipsImage *image, const char *name) {
    int value = 0;
    if (vips_image_get_typeof(image, name) != 0 && vips_image_get_int(image, name, &value) != 0) {
        vips_error_clear();
    }
    return value;
}

// What samples of a kind that is not filtered are, and what becomes of them.
const char *WordsFor(VipsBandFormat format) {
    switch (format) {
        case VIPS_FORMAT_CHAR:
            return "signed 8-bit integers; convert it to 8 bits without signs first";
        case VIPS_FORMAT_SHORT:
            return "signed 16-bit integers; convert it to 16 bits without signs first";
        case VIPS_FORMAT_INT:
        case VIPS_FORMAT_UINT:
            return "32-bit integers; convert it to 16 bits or to 32-bit floats first";
        case VIPS_FORMAT_FLOAT:
            return "floats; convert it to 16 bits first";
        case VIPS_FORMAT_DOUBLE:
            return "64-bit floats; convert it to 32-bit floats first";
        default:
            return "complex numbers, which cannot be filtered";
    }
}

MaybeFailure CheckShape(const std::string &file, VipsImage *image, bool pyramid) {
    const VipsInterpretation interpretation = vips_image_get_interpretation(image);
    const int32_t width = vips_image_get_width(image);
    const int32_t height = vips_image_get_height(image);
    const int32_t colorPlanes = ColorPlanesOf(interpretation);
    const struct {
        bool refused;
        std::string reason;
    } checks[] = {
        {(!pyramid && (IntegerField(image, "n-pages") > 1 || IntegerField(image, "n-subifds") > 0)) ||
             IsAnimatedPng(file),
         "it has several pages or frames, of which only the first would be left; put them into files of "
         "their own first"},
        {width < 1 || height < 1, "the picture is empty"},
        {colorPlanes == 0 || vips_image_get_bands(image) < colorPlanes,
         "its colour mode is " + ColorSpaceName(interpretation) +
             ", and only grey, RGB, Lab and CMYK can be filtered"},
        {ModeOfFile(interpretation, vips_image_get_format(image)) == nullptr,
         std::string("its samples are ") + WordsFor(vips_image_get_format(image))},
        {vips_image_get_bands(image) > kMaxPlanes,
         "it has more than " + std::to_string(kMaxPlanes) + " channels"},
    };
    for (const auto &[refused, reason] : checks) {
        if (refused) {
            return FileFailure(file, reason);
        }
    }
    return std::nullopt;
}

Fixed PixelsPerInch(double pixelsPerMillimeter) {
    const double perInch = std::clamp(pixelsPerMillimeter * kMillimetersPerInch, 0.0, kMaxResolution);
    return static_cast<Fixed>(std::lround(perInch * 65536));
}

void FillShape(VipsImage *image, const PictureMode &mode, VipsImage *metadata, Document *document) {
    document->imageMode = mode.imageMode;
    document->depth = ModeOf(mode.imageMode).depth;
    document->colorPlanes = ModeOf(mode.imageMode).colorPlanes;
    document->planes = vips_image_get_bands(image);
    document->width = vips_image_get_width(image);
    document->height = vips_image_get_height(image);
    document->horizontalResolution = PixelsPerInch(vips_image_get_xres(metadata));
    document->verticalResolution = PixelsPerInch(vips_image_get_yres(metadata));
}

// Only in TIFF files can an extra channel be anything else than transparency.
std::vector<uint16_t> KindsOfExtraPlanes(const std::string &file, bool isTiff, const Document &document) {
    std::vector<uint16_t> kinds = isTiff ? TiffExtraSamples(file) : std::vector<uint16_t>{kUnassociatedAlpha};
    kinds.resize(static_cast<size_t>(document.planes - document.colorPlanes), kUnspecifiedExtra);
    return kinds;
}

// The plane of the first one that is transparency; 0 without one.
int32_t TransparencyAmong(const std::vector<uint16_t> &kinds, int32_t colorPlanes) {
    const auto found = std::find_if(kinds.begin(), kinds.end(), [](uint16_t kind) {
        return kind == kAssociatedAlpha || kind == kUnassociatedAlpha;
    });
    return found == kinds.end() ? 0 : colorPlanes + static_cast<int32_t>(found - kinds.begin());
}

// Pixels per millimetre, from a field such as "exif-ifd0-XResolution"; 0 without one.
double ExifResolution(VipsImage *metadata, const char *field) {
    const char *text = nullptr;
    const char *unit = nullptr;
    if (vips_image_get_typeof(metadata, field) == 0 || vips_image_get_string(metadata, field, &text) != 0) {
        return 0;
    }
    char *slash = nullptr;
    const double numerator = std::strtod(text, &slash);
    const double denominator = *slash == '/' ? std::strtod(slash + 1, nullptr) : 0;
    if (denominator <= 0) {
        return 0;
    }
    const bool centimeters = vips_image_get_typeof(metadata, VIPS_META_RESOLUTION_UNIT) != 0 &&
                             vips_image_get_string(metadata, VIPS_META_RESOLUTION_UNIT, &unit) == 0 &&
                             std::strcmp(unit, "cm") == 0;
    return numerator / denominator / (centimeters ? 10.0 : kMillimetersPerInch);
}

// WebP files only have a resolution in their EXIF data, where the library does not look for it. It reports 1
// when it knows none.
void CompleteResolution(VipsImage *metadata) {
    const double horizontal = ExifResolution(metadata, "exif-ifd0-XResolution");
    const double vertical = ExifResolution(metadata, "exif-ifd0-YResolution");
    if (!(metadata->Xres > 1) && !(metadata->Yres > 1) && horizontal > 0 && vertical > 0) {
        metadata->Xres = horizontal;
        metadata->Yres = vertical;
    }
}

std::optional<FSSpec> SpecOf(const std::string &file) {
    std::error_code error;
    FSSpec spec;
    return SpecFromNativePath(std::filesystem::absolute(file, error), &spec) == noErr ? std::optional(spec)
                                                                                      : std::nullopt;
}

}  // namespace

MaybeFailure OpenPicture(const std::string &file, Picture *picture) {
    picture->file = file;
    if (MaybeFailure failure = CheckFile(file)) {
        return failure;
    }
    if (MaybeFailure failure = OpenImage(file, &picture->unread)) {
        return failure;
    }
    VipsImage *image = picture->unread.get();
    picture->storage = StorageOf(file);
    if (MaybeFailure failure = CheckShape(file, image, picture->storage.pyramid)) {
        return failure;
    }
    VipsImage *metadata = vips_image_new();
    picture->metadata.reset(metadata);
    CopyMetadata(image, metadata);
    CompleteResolution(metadata);
    FillShape(image, *ModeOfFile(vips_image_get_interpretation(image), vips_image_get_format(image)),
              metadata, &picture->document);
    picture->extraSamples = KindsOfExtraPlanes(file, TiffDepth(file) != 0, picture->document);
    picture->document.transparency = TransparencyAmong(picture->extraSamples, picture->document.colorPlanes);
    picture->document.file = SpecOf(file);
    return std::nullopt;
}

bool IsReadWhole(const Picture &picture) {
    VipsImage *image = picture.unread.get();
    const char *text = "";
    if (vips_image_get_typeof(image, VIPS_META_LOADER) == 0 ||
        vips_image_get_string(image, VIPS_META_LOADER, &text) != 0) {
        return true;
    }
    const std::string_view loader = text;
    if (loader.starts_with("tiff")) {
        const Document &document = picture.document;
        const int64_t rows = std::min<int64_t>(TiffStripRows(picture.file), document.height);
        return rows * RowBytes(document) > kMaxStripBytes;
    }
    return loader.starts_with("webp") || loader.starts_with("heif") ||
           IntegerField(image, "interlaced") != 0 || IntegerField(image, "jpeg-multiscan") != 0;
}

int32_t StripHeight(const DocumentShape &document) {
    return static_cast<int32_t>(std::clamp<int64_t>(kStripBytes / RowBytes(document), 1, kStripHeight));
}

RowReader StartReading(Picture *picture) {
    return {picture, OwnedObject<VipsRegion>(vips_region_new(picture->unread.get()))};
}

MaybeFailure ReadRows(RowReader *reader, int32_t count, Document *document, int64_t to) {
    Picture *picture = reader->picture;
    const VipsRect strip = {0, reader->rows, document->width, count};
    VipsRegion *region = reader->region.get();
    if (vips_region_prepare(region, &strip) != 0) {
        return Unreadable(picture->file);
    }
    std::vector<uint8_t> row(static_cast<size_t>(RowBytes(*document)));
    const auto rowStep = static_cast<int64_t>(region->bpl);
    for (int64_t y = 0; y < count; ++y) {
        TakeSamples(region->data + (strip.top + y - region->valid.top) * rowStep, *document, row.data());
        if (!FillRow(document, to + y, row.data())) {
            return TooLittleMemory(picture->file);
        }
    }
    reader->rows += count;
    if (reader->rows == picture->document.height) {
        reader->region.reset();
        picture->unread.reset();
    }
    return std::nullopt;
}

MaybeFailure ReadPixels(Picture *picture, const Watcher &watcher) {
    Document *document = &picture->document;
    if (!MapPixels(Sharing::none, document)) {
        return TooLittleMemory(picture->file);
    }
    RowReader reader = StartReading(picture);
    while (reader.rows < document->height) {
        if (watcher.cancelled()) {
            return Interruption(picture->file);
        }
        const int32_t count = std::min(StripHeight(*document), document->height - reader.rows);
        if (MaybeFailure failure = ReadRows(&reader, count, document, reader.rows)) {
            return failure;
        }
        watcher.progress(double{1} * reader.rows / document->height);
    }
    return std::nullopt;
}

MaybeFailure TooLittleMemory(const std::string &file) {
    return FileFailure(file, "there is not enough memory to read it");
}

std::string SizeOf(const Document &document) {
    return std::to_string(document.width) + " x " + std::to_string(document.height);
}

std::string DescribePicture(const Picture &picture) {
    const Document &document = picture.document;
    const int32_t extraPlanes = document.planes - document.colorPlanes;
    std::string text = SizeOf(document) + " " + ModeOf(document.imageMode).colors;
    if (extraPlanes > 0) {
        text +=
            " and " + std::to_string(extraPlanes) + (extraPlanes == 1 ? " extra channel" : " extra channels");
    }
    return text + ", " + std::to_string(document.depth) + " bits";
}

void CopyMetadata(VipsImage *from, VipsImage *to) {
    to->Xres = from->Xres;
    to->Yres = from->Yres;
    vips_image_map(from, CopyField, to);
}
