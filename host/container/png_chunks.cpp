#include "host/container/png_chunks.h"

#include <zlib.h>

#include "host/container/byte_order.h"

namespace {

constexpr uint64_t kChecksumBytes = 4;
constexpr uint64_t kMaxBytes = 64 << 20;  // of all chunks, or of one unpacked; chosen
constexpr size_t kMaxChunks = 65536;

// Nothing of these belongs to the picture's surroundings.
bool IsPixels(const std::string &type) {
    return type == "IDAT" || type == "fdAT";
}

}  // namespace

bool ReadPngChunks(const ByteFile &file, std::vector<PngChunk> *chunks, uint64_t *headBytes,
                   size_t *headChunks, bool *whole) {
    std::string bytes;
    if (!ReadAt(file, 0, kPngSignature.size(), &bytes) || bytes != kPngSignature) {
        return false;
    }
    *whole = true;
    *headBytes = 0;
    uint64_t left = kMaxBytes;
    for (uint64_t place = kPngSignature.size(); ReadAt(file, place, 8, &bytes);) {
        const uint64_t length = NumberAt(bytes, 0, 4, true);
        PngChunk chunk = {bytes.substr(4), {}};
        if (IsPixels(chunk.type)) {
            if (*headBytes == 0) {
                *headBytes = place;
                *headChunks = chunks->size();
            }
        } else if (chunk.type == "IEND") {
            return *headBytes > 0;
        } else if (length <= left && chunks->size() < kMaxChunks &&
                   ReadAt(file, place + 8, length, &chunk.bytes)) {
            left -= length;
            chunks->push_back(std::move(chunk));
        } else {
            *whole = false;
        }
        place += 8 + length + kChecksumBytes;
    }
    *whole = false;
    return *headBytes > 0;
}

std::string PackPngHead(const std::vector<PngChunk> &chunks) {
    std::string head(kPngSignature);
    for (const PngChunk &chunk : chunks) {
        const std::string summed = chunk.type + chunk.bytes;
        const auto sum = crc32_z(0, reinterpret_cast<const Bytef *>(summed.data()), summed.size());
        head += NumberBytes(chunk.bytes.size(), 4, true) + summed + NumberBytes(sum, 4, true);
    }
    return head;
}

std::string Deflated(const std::string &bytes) {
    uLongf length = compressBound(bytes.size());
    std::string packed(length, '\0');
    const int result = compress2(reinterpret_cast<Bytef *>(packed.data()), &length,
                                 reinterpret_cast<const Bytef *>(bytes.data()), bytes.size(), 9);
    packed.resize(result == Z_OK ? length : 0);
    return packed;
}

bool Inflate(std::string_view packed, std::string *bytes) {
    z_stream stream = {};
    if (inflateInit(&stream) != Z_OK) {
        return false;
    }
    stream.next_in = reinterpret_cast<Bytef *>(const_cast<char *>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    int result = Z_OK;
    for (char block[65536]; result == Z_OK && bytes->size() <= kMaxBytes;) {
        stream.next_out = reinterpret_cast<Bytef *>(block);
        stream.avail_out = sizeof block;
        result = inflate(&stream, Z_NO_FLUSH);
        bytes->append(block, sizeof block - stream.avail_out);
    }
    inflateEnd(&stream);
    return result == Z_STREAM_END;
}
