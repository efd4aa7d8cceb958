// The depth of TIFF files' samples, which the picture library keeps to itself.
#pragma once

#include <cstdint>
#include <string>

// Bits of the first sample on the first page; 0 for other files and for damaged ones.
int32_t TiffDepth(const std::string &file);
