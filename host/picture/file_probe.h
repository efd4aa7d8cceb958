// Facts in picture files that the picture library does not report.
#pragma once

#include <cstdint>
#include <string>

// The library only sees the first frame of an animated PNG. False for other files, and for a single frame.
bool IsAnimatedPng(const std::string &file);

// Bits of the first sample on a TIFF's first page; 0 for other or damaged files.
int32_t TiffDepth(const std::string &file);
// Rows that are stored together, in strips or tiles; UINT32_MAX, which stands for all, for other or damaged
// files.
int64_t TiffStripRows(const std::string &file);
