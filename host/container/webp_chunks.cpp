#include "host/container/webp_chunks.h"

#include <algorithm>

#include "host/container/byte_order.h"

namespace {

constexpr uint64_t kHeaderBytes = 12;
constexpr uint64_t kPixelsStart = 64;     // of a chunk of pixels: holds its own header
constexpr uint64_t kMaxBytes = 64 << 20;  // of all chunks; chosen
constexpr size_t kMaxChunks = 65536;

}  // namespace

bool IsWebpPixels(const WebpChunk &chunk) {
    constexpr const char *kTypes[] = {"VP8 ", "VP8L", "ALPH", "ANMF"};
    return std::any_of(std::begin(kTypes), std::end(kTypes),
                       [&](const char *type) { return chunk.type == type; });
}

bool ReadWebpChunks(const ByteFile &file, std::vector<WebpChunk> *chunks, uint64_t *headBytes, bool *whole) {
    std::string bytes;
    if (!ReadAt(file, 0, kHeaderBytes, &bytes) || bytes.compare(0, 4, "RIFF") != 0 ||
        bytes.compare(8, 4, "WEBP") != 0) {
        return false;
    }
    *whole = true;
    *headBytes = 0;
    uint64_t left = kMaxBytes;
    for (uint64_t place = kHeaderBytes; place < file.size && chunks->size() < kMaxChunks;) {
        if (!ReadAt(file, place, 8, &bytes)) {
            break;
        }
        WebpChunk chunk = {bytes.substr(0, 4), {}, NumberAt(bytes, 4, 4, false)};
        const bool pixels = IsWebpPixels(chunk);
        const uint64_t wanted = pixels ? std::min(kPixelsStart, chunk.length) : chunk.length;
        if (pixels && *headBytes == 0) {
            *headBytes = place;
        }
        place += 8 + chunk.length + chunk.length % 2;
        if (wanted > left || !ReadAt(file, place - chunk.length - chunk.length % 2, wanted, &chunk.bytes)) {
            *whole = false;
            continue;
        }
        left -= wanted;
        chunks->push_back(std::move(chunk));
    }
    return *headBytes > 0;
}

std::string PackWebpChunk(const std::string &type, const std::string &bytes) {
    return type + NumberBytes(bytes.size(), 4, false) + bytes + std::string(bytes.size() % 2, '\0');
}

std::string PackWebpHead(const std::string &chunks, uint64_t furtherBytes) {
    return "RIFF" + NumberBytes(4 + chunks.size() + furtherBytes, 4, false) + "WEBP" + chunks;
}

std::string ExtendedWebpHeader(uint8_t flags, uint64_t width, uint64_t height) {
    return PackWebpChunk("VP8X", NumberBytes(flags, 4, false) + NumberBytes(width - 1, 3, false) +
                                     NumberBytes(height - 1, 3, false));
}
