#include "host/picture/netpbm.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <sstream>

#include "host/container/byte_file.h"

namespace {

constexpr uint64_t kMaxHeader = 4096;  // chosen: comments may be long
constexpr int64_t kMaxSide = VIPS_MAX_COORD;

struct Header {
    int64_t width = 0, height = 0, bands = 0, most = 0;
    uint64_t bytes = 0;
};

// The next word; comments reach to the end of their line. One blank ends the last word of all.
std::string NextWord(const std::string &text, uint64_t *place) {
    std::string word;
    for (bool comment = false; *place < text.size(); ++*place) {
        const char c = text[*place];
        const bool blank = c == ' ' || c == '\t' || c == '\n' || c == '\r';
        comment = (comment && c != '\n') || (c == '#' && word.empty());
        if (blank && !word.empty()) {
            ++*place;
            break;
        }
        if (!blank && !comment) {
            word += c;
        }
    }
    return word;
}

int64_t NextNumber(const std::string &text, uint64_t *place) {
    std::istringstream word(NextWord(text, place));
    int64_t number = 0;
    return word >> number && word.eof() ? number : 0;
}

Header ParseOld(const std::string &text, bool colors) {
    Header header;
    header.bytes = 2;
    header.width = NextNumber(text, &header.bytes);
    header.height = NextNumber(text, &header.bytes);
    header.most = NextNumber(text, &header.bytes);
    header.bands = colors ? 3 : 1;
    return header;
}

Header ParsePam(const std::string &text) {
    Header header;
    header.bytes = 2;
    for (;;) {
        const std::string name = NextWord(text, &header.bytes);
        const std::pair<const char *, int64_t *> numbers[] = {{"WIDTH", &header.width},
                                                              {"HEIGHT", &header.height},
                                                              {"DEPTH", &header.bands},
                                                              {"MAXVAL", &header.most}};
        if (name == "ENDHDR" || name.empty()) {
            return name.empty() ? Header{} : header;
        }
        const auto *known = std::find_if(std::begin(numbers), std::end(numbers),
                                         [&](const auto &number) { return name == number.first; });
        if (known != std::end(numbers)) {
            *known->second = NextNumber(text, &header.bytes);
        } else {
            NextWord(text, &header.bytes);  // the kind of samples, which their number tells
        }
    }
}

VipsInterpretation InterpretationOf(int64_t bands, bool wide) {
    return bands <= 2 ? (wide ? VIPS_INTERPRETATION_GREY16 : VIPS_INTERPRETATION_B_W)
                      : (wide ? VIPS_INTERPRETATION_RGB16 : VIPS_INTERPRETATION_sRGB);
}

// Files have the high byte first.
OwnedObject<VipsImage> Swapped(VipsImage *image) {
    VipsImage *swapped = nullptr;
    if (vips_byteswap(image, &swapped, nullptr) != 0) {
        return nullptr;
    }
    return OwnedObject<VipsImage>(swapped);
}

int Save(VipsImage *image, const char *path, const std::string &header) {
    const OwnedObject<VipsImage> swapped = Swapped(image);
    const int descriptor = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (swapped == nullptr || descriptor < 0 ||
        write(descriptor, header.data(), header.size()) != static_cast<ssize_t>(header.size())) {
        vips_error_system(errno, "hymedian", "%s", "cannot write");
        close(descriptor);
        return -1;
    }
    const int result = vips_rawsave_fd(swapped.get(), descriptor, nullptr);
    return close(descriptor) != 0 ? -1 : result;
}

int MostOf(VipsImage *image) {
    return vips_image_get_format(image) == VIPS_FORMAT_USHORT ? 65535 : 255;
}

}  // namespace

MaybeFailure OpenNetpbm(const std::string &file, OwnedObject<VipsImage> *image) {
    ByteFile opened;
    std::string text;
    if (!OpenForReading(file, &opened) || !ReadAt(opened, 0, std::min(kMaxHeader, opened.size), &text) ||
        text.size() < 3 || text[0] != 'P' || text[1] < '1' || text[1] > '7' ||
        g_ascii_isspace(text[2]) == 0) {
        return std::nullopt;
    }
    const bool binary = text[1] >= '5';
    const Header header = text[1] == '7' ? ParsePam(text) : ParseOld(text, text[1] == '6');
    if (!binary || (header.most != 255 && header.most != 65535)) {
        return FileFailure(file,
                           "of PGM, PPM and PAM only binary ones with samples up to 255 or 65535 are read; "
                           "convert it to TIFF first");
    }
    const bool wide = header.most > 255;
    const auto sides = {header.width, header.height};
    const bool sound =
        std::all_of(sides.begin(), sides.end(), [](int64_t side) { return side >= 1 && side <= kMaxSide; }) &&
        header.bands >= 1 && header.bands <= 4;
    const int64_t pixelBytes = header.bands * (wide ? 2 : 1);
    if (!sound || static_cast<uint64_t>(header.width) * static_cast<uint64_t>(header.height) >
                      (opened.size - header.bytes) / static_cast<uint64_t>(pixelBytes)) {
        return FileFailure(file, "cannot be read: it is damaged or cut short");
    }
    VipsImage *raw = nullptr;
    if (vips_rawload(file.c_str(), &raw, static_cast<int>(header.width), static_cast<int>(header.height),
                     static_cast<int>(header.bands), "offset", static_cast<guint64>(header.bytes), "format",
                     wide ? VIPS_FORMAT_USHORT : VIPS_FORMAT_UCHAR, "interpretation",
                     InterpretationOf(header.bands, wide), nullptr) != 0) {
        return FileFailure(file, "cannot be read: " + TakeVipsError());
    }
    const OwnedObject<VipsImage> owned(raw);
    *image = Swapped(raw);
    return std::nullopt;
}

int SavePpm(VipsImage *image, const char *path) {
    std::ostringstream header;
    header << (vips_image_get_bands(image) == 1 ? "P5" : "P6") << '\n'
           << vips_image_get_width(image) << ' ' << vips_image_get_height(image) << '\n'
           << MostOf(image) << '\n';
    return Save(image, path, header.str());
}

int SavePam(VipsImage *image, const char *path) {
    constexpr const char *kKinds[] = {"GRAYSCALE", "GRAYSCALE_ALPHA", "RGB", "RGB_ALPHA"};
    const int bands = vips_image_get_bands(image);
    std::ostringstream header;
    header << "P7\nWIDTH " << vips_image_get_width(image) << "\nHEIGHT " << vips_image_get_height(image)
           << "\nDEPTH " << bands << "\nMAXVAL " << MostOf(image) << "\nTUPLTYPE " << kKinds[bands - 1]
           << "\nENDHDR\n";
    return Save(image, path, header.str());
}
