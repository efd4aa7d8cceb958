#include <algorithm>

#include "host/container/byte_order.h"
#include "host/picture/exif.h"
#include "host/picture/metadata_record.h"

namespace {

const std::string kExifStart("Exif\0\0", 6);  // which some programs write, though it does not belong there

const WebpChunk *FindChunk(const std::vector<WebpChunk> &chunks, const char *type) {
    const auto found = std::find_if(chunks.begin(), chunks.end(),
                                    [&](const WebpChunk &chunk) { return chunk.type == type; });
    return found == chunks.end() ? nullptr : &*found;
}

bool IsKnown(const WebpChunk &chunk) {
    constexpr const char *kTypes[] = {"VP8X", "ICCP", "EXIF", "XMP ", "ANIM"};
    return IsWebpPixels(chunk) || std::any_of(std::begin(kTypes), std::end(kTypes),
                                              [&](const char *type) { return chunk.type == type; });
}

// Width, height and flags of a plain file, out of the header of its pixels. An extended one has them already.
std::string HeaderFor(const WebpChunk &first, uint8_t flags) {
    if (first.type == "VP8X" && first.bytes.size() >= 10) {
        const auto alpha = static_cast<uint8_t>(first.bytes[0]) & kWebpAlpha;
        return ExtendedWebpHeader(static_cast<uint8_t>(flags | alpha), 1 + NumberAt(first.bytes, 4, 3, false),
                                  1 + NumberAt(first.bytes, 7, 3, false));
    }
    if (first.type == "VP8L" && first.bytes.size() >= 5) {
        const uint64_t bits = NumberAt(first.bytes, 1, 4, false);
        const auto alpha = static_cast<uint8_t>((bits >> 28 & 1) * kWebpAlpha);
        return ExtendedWebpHeader(static_cast<uint8_t>(flags | alpha), 1 + (bits & 0x3FFF),
                                  1 + (bits >> 14 & 0x3FFF));
    }
    if (first.type == "VP8 " && first.bytes.size() >= 10) {
        return ExtendedWebpHeader(flags, NumberAt(first.bytes, 6, 2, false) & 0x3FFF,
                                  NumberAt(first.bytes, 8, 2, false) & 0x3FFF);
    }
    return {};
}

}  // namespace

bool TakeWebp(const ByteFile &file, Metadata *metadata) {
    uint64_t headBytes = 0;
    bool whole = true;
    if (!ReadWebpChunks(file, &metadata->webpChunks, &headBytes, &whole)) {
        return false;
    }
    if (!whole) {
        metadata->lost.insert(kChunks);
    }
    if (const WebpChunk *exif = FindChunk(metadata->webpChunks, "EXIF")) {
        const bool extra = exif->bytes.compare(0, kExifStart.size(), kExifStart) == 0;
        TakeExifBlock(exif->bytes.substr(extra ? kExifStart.size() : 0), &metadata->exif);
    }
    if (const WebpChunk *xmp = FindChunk(metadata->webpChunks, "XMP ")) {
        metadata->xmp = xmp->bytes;
    }
    if (const WebpChunk *profile = FindChunk(metadata->webpChunks, "ICCP")) {
        metadata->profile = profile->bytes;
    }
    return true;
}

bool PutWebp(Metadata *metadata, ByteFile *file) {
    std::vector<WebpChunk> own;
    uint64_t headBytes = 0;
    bool whole = true;
    if (!ReadWebpChunks(*file, &own, &headBytes, &whole) || own.empty()) {
        return false;
    }
    const bool same = metadata->container == Container::webp;
    if (!same) {
        TakeTextsIntoExif(metadata);
        TakeResolutionIntoExif(metadata);
        TakeResourcesIntoExif(metadata);
    }
    DropGreyProfile(metadata);
    const std::string block = PackExif(metadata, INT32_MAX);
    const struct {
        const char *type;
        const std::string &bytes;
        uint8_t flag;
    } chunks[] = {{"EXIF", block, kWebpExif}, {"XMP ", metadata->xmp, kWebpXMP}};
    std::string tail;
    auto flags = static_cast<uint8_t>(metadata->profile.empty() ? 0 : kWebpProfile);
    for (const auto &[type, bytes, flag] : chunks) {
        if (!bytes.empty()) {
            tail += PackWebpChunk(type, bytes);
            flags = static_cast<uint8_t>(flags | flag);
        }
    }
    for (const WebpChunk &chunk : metadata->webpChunks) {
        tail += same && !IsKnown(chunk) ? PackWebpChunk(chunk.type, chunk.bytes) : "";
    }
    // What the library writes behind the pixels unasked is dropped.
    uint64_t pixels = 0;
    for (const WebpChunk &chunk : own) {
        pixels += IsWebpPixels(chunk) ? 8 + chunk.length + chunk.length % 2 : 0;
    }
    file->size = std::min(file->size, headBytes + pixels);
    const bool plain = flags == 0 && tail.empty() && own.front().type != "VP8X";
    std::string head = plain ? "" : HeaderFor(own.front(), flags);
    head += metadata->profile.empty() ? "" : PackWebpChunk("ICCP", metadata->profile);
    return WriteAt(file, file->size, tail) &&
           ReplaceHead(file, headBytes, PackWebpHead(head, pixels + tail.size()));
}
