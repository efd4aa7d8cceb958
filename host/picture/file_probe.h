// What files say of themselves that the picture library keeps to itself.
#pragma once

#include <cstdint>
#include <string>

// Of an animated PNG the library sees the first frame alone. False for other files, and for a single frame.
bool IsAnimatedPng(const std::string &file);

// Bits of the first sample on a TIFF's first page; 0 for other files and for damaged ones.
int32_t TiffDepth(const std::string &file);
