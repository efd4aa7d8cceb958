// Facts in picture files that the picture library does not report.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// The library only sees the first frame of an animated PNG. False for other files, and for a single frame.
bool IsAnimatedPng(const std::string &file);

// Bits of the first sample on a TIFF's first page; 0 for other or damaged files.
int32_t TiffDepth(const std::string &file);
// Rows that are stored together, in strips or tiles; UINT32_MAX, which stands for all, for other or damaged
// files.
int64_t TiffStripRows(const std::string &file);

// The kinds of channels beside the colours, as TIFF numbers them.
enum ExtraSample : uint16_t { kUnspecifiedExtra = 0, kAssociatedAlpha = 1, kUnassociatedAlpha = 2 };

// As a TIFF's first page states them, empty for other or damaged files. There may be more channels.
std::vector<uint16_t> TiffExtraSamples(const std::string &file);
// Writes them into a TIFF that states as many; false if it does not, or cannot be written.
bool ChangeTiffExtraSamples(const std::string &file, const std::vector<uint16_t> &kinds);

// False for other or damaged files.
bool IsLabTiff(const std::string &file);

struct BytePatch {
    int64_t place;  // in the file
    uint8_t value;
};
// What to change in a TIFF's first header so that the library neither converts Lab nor divides associated
// alpha out; none for other files.
std::vector<BytePatch> PatchesForRawSamples(const std::string &file);
