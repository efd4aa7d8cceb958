// How coarsely the pixels of a WebP file with loss are stored.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

// Of the picture's parts: 0 (fine) to 127.
struct Vp8Quantizers {
    int32_t coarsest, finest;
};

// Reads them out of the start of the pixels' chunk.
std::optional<Vp8Quantizers> ReadVp8Quantizers(std::string_view chunk);
