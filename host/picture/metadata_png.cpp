#include <glib.h>

#include <algorithm>
#include <cmath>
#include <iterator>

#include "host/container/byte_order.h"
#include "host/picture/exif.h"
#include "host/picture/exiv2_library.h"
#include "host/picture/metadata_record.h"

namespace {

using namespace std::string_literals;

const std::string kXmpKeyword = "XML:com.adobe.xmp"s;
const std::string kCommentKeyword = "Comment"s;
const std::string kExifStart = "Exif\0\0"s;
const std::string kTextProfile = "Raw profile type "s;
constexpr double kMetersPerInch = 0.0254;
constexpr uint64_t kStandardGamma = 45455;  // sRGB's, nearly, in hundred thousandths

// Chunks that describe how this very file stores its pixels.
constexpr const char *kStorageChunks[] = {"IHDR", "PLTE", "tRNS", "hIST", "acTL", "fcTL"};
// These must come before the palette.
constexpr const char *kColorChunks[] = {"cHRM", "gAMA", "iCCP", "sBIT", "sRGB", "cICP", "mDCV", "cLLI"};
// These must not be copied when pixels change, by their names, but these may be all the same.
constexpr const char *kKept[] = {"cHRM", "gAMA", "iCCP", "sRGB", "cICP", "mDCV", "cLLI", "bKGD", "sBIT",
                                 "tIME", "eXIf", "sTER", "sCAL", "pCAL", "oFFs", "iDOT", "vpAg"};

template <size_t kCount>
bool IsAmong(const char *const (&types)[kCount], const std::string &type) {
    return std::any_of(std::begin(types), std::end(types), [&](const char *known) { return type == known; });
}

const PngChunk *FindChunk(const std::vector<PngChunk> &chunks, const std::string &type) {
    const auto found =
        std::find_if(chunks.begin(), chunks.end(), [&](const PngChunk &chunk) { return chunk.type == type; });
    return found == chunks.end() ? nullptr : &*found;
}

// Splits at the first zero byte.
bool Split(const std::string &bytes, std::string *before, std::string *after) {
    const size_t zero = bytes.find('\0');
    if (zero == std::string::npos) {
        return false;
    }
    *before = bytes.substr(0, zero);
    *after = bytes.substr(zero + 1);
    return true;
}

std::string FromLatin1(const std::string &latin) {
    std::string text;
    for (const char c : latin) {
        const auto code = static_cast<uint8_t>(c);
        if (code < 0x80) {
            text += c;
        } else {
            text += static_cast<char>(0xC0 | code >> 6);
            text += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    return text;
}

// The three kinds of texts: plain, packed, and those in UTF-8, which may be packed and have a language.
bool TextOf(const PngChunk &chunk, std::string *keyword, std::string *text) {
    std::string rest;
    if (!Split(chunk.bytes, keyword, &rest)) {
        return false;
    }
    if (chunk.type == "tEXt") {
        *text = FromLatin1(rest);
        return true;
    }
    if (chunk.type == "zTXt") {
        std::string latin;
        const bool sound = !rest.empty() && Inflate(std::string_view(rest).substr(1), &latin);
        *text = FromLatin1(latin);
        return sound;
    }
    std::string language, translated, last;
    if (rest.size() < 2 || !Split(rest.substr(2), &language, &translated) ||
        !Split(translated, &language, &last)) {
        return false;
    }
    if (rest[0] == 0) {
        *text = last;
        return true;
    }
    return Inflate(last, text);
}

PngChunk TextChunk(const std::string &keyword, const std::string &text) {
    return {"iTXt", keyword + std::string(5, '\0') + text};
}

// In hexadecimal digits, 36 bytes a line, behind its name and length.
PngChunk TextProfileChunk(const std::string &name, const std::string &bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    constexpr size_t kBytesPerLine = 36;
    std::string length = std::to_string(bytes.size());
    length.insert(0, length.size() < 8 ? 8 - length.size() : 0, ' ');
    std::string text = "\n" + name + "\n" + length;
    for (size_t i = 0; i < bytes.size(); ++i) {
        text += i % kBytesPerLine == 0 ? "\n" : "";
        text += kDigits[static_cast<uint8_t>(bytes[i]) >> 4];
        text += kDigits[bytes[i] & 0xF];
    }
    return {"zTXt", kTextProfile + name + std::string(2, '\0') + Deflated(text + "\n")};
}

// Behind name and length, each in a line of its own.
std::string BytesOfTextProfile(const std::string &text) {
    std::string bytes;
    const size_t name = text.find_first_not_of('\n');
    const size_t length = text.find('\n', name);
    const size_t digits = text.find('\n', length == std::string::npos ? length : length + 1);
    int high = -1;
    for (size_t i = digits; i < text.size(); ++i) {
        if (g_ascii_isxdigit(text[i]) == 0) {
            continue;
        }
        const int digit = g_ascii_xdigit_value(text[i]);
        if (high >= 0) {
            bytes += static_cast<char>(high << 4 | digit);
        }
        high = high >= 0 ? -1 : digit;
    }
    return bytes;
}

// As programs wrote them before PNG had places for EXIF and XMP; IPTC has none to this day.
void TakeTextProfile(const std::string &name, const std::string &text, Metadata *metadata) {
    const std::string bytes = BytesOfTextProfile(text);
    if (name == "iptc" || name == "8bim") {
        metadata->photoshop = bytes;
        TakeIptcOutOf(&metadata->photoshop, &metadata->iptc);
    } else if (name == "xmp") {
        metadata->xmp = bytes;
    } else if (bytes.compare(0, kExifStart.size(), kExifStart) == 0) {
        TakeExifBlock(bytes.substr(kExifStart.size()), &metadata->exif);
    } else {
        metadata->lostElsewhere.insert(kTexts);
    }
}

void TakeTexts(const PngChunk &chunk, Metadata *metadata) {
    std::string keyword, text;
    if (!TextOf(chunk, &keyword, &text)) {
        metadata->lostElsewhere.insert(kTexts);
    } else if (keyword == kXmpKeyword) {
        metadata->xmp = text;
    } else if (keyword.compare(0, kTextProfile.size(), kTextProfile) == 0) {
        TakeTextProfile(keyword.substr(kTextProfile.size()), text, metadata);
    } else if (keyword == kCommentKeyword) {
        metadata->comments.push_back(text);
    } else {
        metadata->texts.emplace_back(keyword, text);
    }
}

// Whole numbers to the inch are what they were before they were counted to the metre.
double WholePerInch(double perMeter) {
    const double whole = std::round(perMeter * kMetersPerInch);
    return std::round(whole / kMetersPerInch) == perMeter ? whole : 0;
}

void TakeResolution(const std::string &bytes, Metadata *metadata) {
    const auto x = static_cast<double>(NumberAt(bytes, 0, 4, true));
    const auto y = static_cast<double>(NumberAt(bytes, 4, 4, true));
    // Without a unit it is the shape of pixels.
    if (bytes[8] == 1 && x > 0 && y > 0) {
        const bool inches = WholePerInch(x) > 0 && WholePerInch(y) > 0;
        metadata->resolution =
            inches ? Resolution{WholePerInch(x), WholePerInch(y), 2} : Resolution{x / 100, y / 100, 3};
    }
}

void AppendResolution(const Metadata &metadata, std::vector<PngChunk> *chunks) {
    const std::optional<Resolution> resolution = ResolutionOf(metadata);
    if (resolution) {
        const double perUnit = resolution->unit == 2 ? 1 / kMetersPerInch : resolution->unit == 3 ? 100 : 1;
        const double x = std::round(resolution->horizontal * perUnit);
        const double y = std::round(resolution->vertical * perUnit);
        if (x >= 1 && x <= INT32_MAX && y >= 1 && y <= INT32_MAX) {
            chunks->push_back({"pHYs", NumberBytes(static_cast<uint64_t>(x), 4, true) +
                                           NumberBytes(static_cast<uint64_t>(y), 4, true) +
                                           (resolution->unit == 1 ? '\0' : '\1')});
        }
    }
}

void AppendExif(Metadata *metadata, std::vector<PngChunk> *chunks) {
    if (const std::string block = PackExif(metadata, INT32_MAX); !block.empty()) {
        chunks->push_back({"eXIf", block});
    }
}

// A chunk whose name's last letter is small may be copied by programs that do not know it.
bool MayBeCopied(const PngChunk &chunk, bool sameColors) {
    const bool ofColors = chunk.type == "bKGD" || chunk.type == "sBIT";
    return !IsAmong(kStorageChunks, chunk.type) && (sameColors || !ofColors) &&
           ((chunk.type[3] & 0x20) != 0 || IsAmong(kKept, chunk.type));
}

void CopyChunks(bool sameColors, Metadata *metadata, std::vector<PngChunk> *chunks) {
    bool exifIsThere = false;
    for (const PngChunk &chunk : metadata->pngChunks) {
        if (chunk.type == "eXIf") {
            if (!exifIsThere) {
                AppendExif(metadata, chunks);
            }
            exifIsThere = true;
        } else if (MayBeCopied(chunk, sameColors)) {
            chunks->push_back(chunk);
        }
    }
    if (!exifIsThere && metadata->exif.changed) {
        AppendExif(metadata, chunks);
    }
}

void MakeChunks(Metadata *metadata, std::vector<PngChunk> *chunks) {
    if (!metadata->profile.empty()) {
        chunks->push_back({"iCCP", "ICC"s + std::string(2, '\0') + Deflated(metadata->profile)});
    }
    AppendResolution(*metadata, chunks);
    AppendExif(metadata, chunks);
    if (!metadata->xmp.empty()) {
        chunks->push_back(TextChunk(kXmpKeyword, metadata->xmp));
    }
    if (const std::string resources = WithIptc(metadata->photoshop, metadata->iptc); !resources.empty()) {
        chunks->push_back(TextProfileChunk("iptc", resources));
    }
    for (const std::string &comment : metadata->comments) {
        const char *end = nullptr;
        const bool isUtf8 = g_utf8_validate(comment.data(), static_cast<gssize>(comment.size()), &end) != 0;
        chunks->push_back(TextChunk(kCommentKeyword, isUtf8 ? comment : FromLatin1(comment)));
    }
}

}  // namespace

bool TakePng(const ByteFile &file, Metadata *metadata) {
    uint64_t headBytes = 0;
    size_t headChunks = 0;
    bool whole = true;
    if (!ReadPngChunks(file, &metadata->pngChunks, &headBytes, &headChunks, &whole)) {
        return false;
    }
    if (!whole) {
        metadata->lost.insert(kChunks);
    }
    bool standardColors = true;
    for (const PngChunk &chunk : metadata->pngChunks) {
        if (chunk.type == "eXIf") {
            TakeExifBlock(chunk.bytes, &metadata->exif);
        } else if (chunk.type == "pHYs" && chunk.bytes.size() == 9) {
            TakeResolution(chunk.bytes, metadata);
        } else if (chunk.type == "tEXt" || chunk.type == "zTXt" || chunk.type == "iTXt") {
            TakeTexts(chunk, metadata);
        } else if (chunk.type == "gAMA" && chunk.bytes.size() == 4) {
            const uint64_t gamma = NumberAt(chunk.bytes, 0, 4, true);
            standardColors = gamma + 100 >= kStandardGamma && gamma <= kStandardGamma + 100;
        } else if (chunk.type == "iCCP") {
            const size_t name = chunk.bytes.find('\0');
            if (name == std::string::npos ||
                !Inflate(std::string_view(chunk.bytes).substr(std::min(name + 2, chunk.bytes.size())),
                         &metadata->profile)) {
                metadata->profile.clear();
                metadata->lostElsewhere.insert(kProfile);
            }
        }
    }
    if (!standardColors && metadata->profile.empty() && FindChunk(metadata->pngChunks, "sRGB") == nullptr) {
        metadata->lostElsewhere.insert(kGamma);
    }
    return true;
}

bool PutPng(Metadata *metadata, ByteFile *file) {
    std::vector<PngChunk> own;
    uint64_t headBytes = 0;
    size_t headChunks = 0;
    bool whole = true;
    if (!ReadPngChunks(*file, &own, &headBytes, &headChunks, &whole)) {
        return false;
    }
    own.resize(headChunks);
    std::vector<PngChunk> chunks;
    if (metadata->container == Container::png) {
        // Depth and kind of colours.
        const PngChunk *header = FindChunk(metadata->pngChunks, "IHDR");
        CopyChunks(header != nullptr && !own.empty() && header->bytes.compare(8, 2, own[0].bytes, 8, 2) == 0,
                   metadata, &chunks);
    } else {
        MakeChunks(metadata, &chunks);
    }
    std::stable_partition(chunks.begin(), chunks.end(),
                          [](const PngChunk &chunk) { return IsAmong(kColorChunks, chunk.type); });
    std::erase_if(own, [](const PngChunk &chunk) { return !IsAmong(kStorageChunks, chunk.type); });
    const auto behindColors = std::find_if_not(chunks.begin(), chunks.end(), [](const PngChunk &chunk) {
        return IsAmong(kColorChunks, chunk.type);
    });
    chunks.insert(behindColors, own.begin() + 1, own.end());
    chunks.insert(chunks.begin(), own.front());
    return ReplaceHead(file, headBytes, PackPngHead(chunks));
}
