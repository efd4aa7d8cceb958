// The chunks of PNG files.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "host/container/byte_file.h"

constexpr std::string_view kPngSignature("\x89PNG\r\n\x1A\n", 8);

struct PngChunk {
    std::string type;
    std::string bytes;
};

// Reads all chunks but those of the pixels. `headBytes` is the length of the file up to the first of these,
// and `headChunks` counts the chunks before it. False for what is no PNG; `whole` becomes false where chunks
// are damaged.
bool ReadPngChunks(const ByteFile &file, std::vector<PngChunk> *chunks, uint64_t *headBytes,
                   size_t *headChunks, bool *whole);

// The start of a file: its signature and the chunks.
std::string PackPngHead(const std::vector<PngChunk> &chunks);

// Text that may be packed; nothing that unpacks to more than 64 MB.
std::string Deflated(const std::string &bytes);
bool Inflate(std::string_view packed, std::string *bytes);
