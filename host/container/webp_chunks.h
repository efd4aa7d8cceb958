// The chunks of WebP files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/container/byte_file.h"

// What the header of extended files says they hold.
enum WebpFlag : uint8_t { kWebpXMP = 0x04, kWebpExif = 0x08, kWebpAlpha = 0x10, kWebpProfile = 0x20 };

struct WebpChunk {
    std::string type;
    std::string bytes;    // of pixels only the start
    uint64_t length = 0;  // as the chunk itself says
};

bool IsWebpPixels(const WebpChunk &chunk);

// Reads all chunks. `headBytes` is the length of the file up to its pixels. False for what is no WebP;
// `whole` becomes false where chunks are damaged.
bool ReadWebpChunks(const ByteFile &file, std::vector<WebpChunk> *chunks, uint64_t *headBytes, bool *whole);

std::string PackWebpChunk(const std::string &type, const std::string &bytes);
// The start of a file whose further bytes are as many as said.
std::string PackWebpHead(const std::string &chunks, uint64_t furtherBytes);
// The header of an extended file.
std::string ExtendedWebpHeader(uint8_t flags, uint64_t width, uint64_t height);
