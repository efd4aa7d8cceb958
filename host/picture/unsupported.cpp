#include "host/picture/unsupported.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "host/container/container.h"
#include "host/container/tiff_directory.h"
#include "host/picture/vips_library.h"

namespace {

using namespace std::string_view_literals;

constexpr const char *kDevelop = "develop it into a 16-bit TIFF first";
constexpr const char *kToTiff = "convert it to TIFF first";
constexpr const char *kToPng = "convert it to PNG or TIFF first";

constexpr const char *kJpegXL = "a JPEG XL picture, whose loader in libvips is not for strangers' files";

struct Kind {
    size_t place;
    std::string_view bytes;
    const char *name;
    const char *advice;
};

constexpr Kind kKinds[] = {
    {8, "CR\2\0"sv, "a camera's raw picture (CR2)", kDevelop},
    {4, "ftypcrx "sv, "a camera's raw picture (CR3)", kDevelop},
    {0, "FUJIFILMCCD-RAW"sv, "a camera's raw picture (RAF)", kDevelop},
    {0, "IIRO"sv, "a camera's raw picture (ORF)", kDevelop},
    {0, "IIRS"sv, "a camera's raw picture (ORF)", kDevelop},
    {0, "MMOR"sv, "a camera's raw picture (ORF)", kDevelop},
    {0, "IIU\0"sv, "a camera's raw picture (RW2)", kDevelop},
    {0, "FOVb"sv, "a camera's raw picture (X3F)", kDevelop},
    {0, "8BPS"sv, "a layered document (PSD)", kToTiff},
    {0, "gimp xcf"sv, "a layered document (XCF)", kToTiff},
    {0, "\xFF\x0A"sv, kJpegXL, kToTiff},
    {4, "JXL \r\n"sv, kJpegXL, kToTiff},
    {4, "jP  \r\n"sv, "a JPEG 2000 picture", kToTiff},
    {0, "\xFF\x4F\xFF\x51"sv, "a JPEG 2000 picture", kToTiff},
    {0, "v/1\1"sv, "an OpenEXR picture", kToTiff},
    {0, "#?RADIANCE"sv, "a Radiance picture", kToTiff},
    {0, "SIMPLE  ="sv, "a FITS picture", kToTiff},
    {0, "BM"sv, "a BMP picture", kToPng},
    {0, "DDS "sv, "a DDS picture", kToPng},
    {0, "\0\0\1\0"sv, "an icon", kToPng},
    {0, "%PDF"sv, "a PDF document", kToPng},
    {0, "<svg"sv, "an SVG drawing", kToPng},
};

constexpr uint16_t kTagDNGVersion = 50706;
constexpr uint64_t kColorFilterArray = 32803;
constexpr uint64_t kLinearRaw = 34892;

bool IsRaw(const TiffDirectory &directory) {
    const uint64_t photometric = NumberOf(directory, kTagPhotometric, 0);
    const TiffEntry *below = FindEntry(directory, kTagSubIFDs);
    return FindEntry(directory, kTagDNGVersion) != nullptr || photometric == kColorFilterArray ||
           photometric == kLinearRaw ||
           (below != nullptr && std::any_of(below->children.begin(), below->children.end(), IsRaw));
}

std::string WhyTiffIsNot(const ByteFile &file) {
    TiffSource tiff;
    TiffDirectory directory;
    bool whole = false;
    if (!OpenTiff(BytesOfFile(file), &tiff) || !ReadDirectory(tiff, tiff.first, &directory, &whole)) {
        return {};
    }
    if (IsRaw(directory)) {
        return std::string("this is a camera's raw picture in a TIFF (such as DNG or NEF); ") + kDevelop;
    }
    constexpr uint64_t kBits[] = {1, 2, 4, 8, 16, 32};
    const uint64_t bits = NumberOf(directory, kTagBitsPerSample, 1);
    if (std::find(std::begin(kBits), std::end(kBits), bits) == std::end(kBits)) {
        return "its samples have " + std::to_string(bits) +
               " bits; convert it to 8 bits, 16 bits or 32-bit floats first";
    }
    return {};
}

}  // namespace

std::string WhyUnsupported(const std::string &file) {
    constexpr uint64_t kStart = 32;
    ByteFile opened;
    std::string bytes;
    if (!OpenForReading(file, &opened) || !ReadAt(opened, 0, std::min(kStart, opened.size), &bytes)) {
        return {};
    }
    if (ContainerOf(opened) == Container::heif && !HasHeif()) {
        return kNoHeif;
    }
    const auto *kind = std::find_if(std::begin(kKinds), std::end(kKinds), [&](const Kind &known) {
        return bytes.size() > known.place && bytes.compare(known.place, known.bytes.size(), known.bytes) == 0;
    });
    return kind == std::end(kKinds) ? WhyTiffIsNot(opened)
                                    : std::string("this is ") + kind->name + "; " + kind->advice;
}
