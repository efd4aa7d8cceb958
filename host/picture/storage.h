// How a file stores its pixels: what comes in stored in one way goes out in that way, as far as the output's
// format has it.
#pragma once

#include <vips/vips.h>

#include <cstdint>
#include <string>

#include "host/report/failure.h"

constexpr int32_t kFineQuality =
    95;  // of 100; for pictures that were stored without loss: little of them goes

struct Storage {
    int32_t bits = 0;      // 1, 2 or 4 for grey pictures of so few; otherwise 0
    bool palette = false;  // the samples are numbers of colours; these are written instead
    VipsForeignTiffCompression compression = VIPS_FOREIGN_TIFF_COMPRESSION_NONE;
    VipsForeignTiffPredictor predictor = VIPS_FOREIGN_TIFF_PREDICTOR_NONE;
    bool tiled = false;
    int32_t tileWidth = 0, tileHeight = 0;
    bool bigTiff = false;
    bool whiteIsZero = false;
    bool pyramid = false;         // with smaller copies of itself behind it,
    bool subDirectories = false;  // or below it
    int32_t jpegQuality = kFineQuality;
    bool subsampled = false;   // fewer samples of JPEG's colours than of its brightness
    bool progressive = false;  // of JPEG,
    bool interlaced = false;   // and of PNG
    int32_t webpQuality = 0;   // 0: without loss
    // Files do not tell it. Chosen: on noise about as large as cameras make them.
    int32_t heifQuality = 80;
};

// That of the file, estimated where the file does not say it. The defaults for what other formats do not
// have, and for files that cannot be read.
Storage StorageOf(const std::string &file);

// What the user wants instead.
struct StorageChoice {
    int32_t compression = -1;  // a VipsForeignTiffCompression; -1 for the input's
    int32_t quality = 0;       // 1 to 100; 0 for the input's
};
void Choose(const StorageChoice &choice, Storage *storage);

// -1 for a name that is not among kCompressionNames.
int32_t CompressionNamed(const std::string &name);
extern const char *const kCompressionNames;
