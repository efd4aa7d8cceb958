// Samples as the picture library delivers them, on their way into a document.
#pragma once

#include <vips/vips.h>

#include "host/document/document.h"

// How the library delivers a picture's samples.
enum class SampleForm {
    asInFile,
    packedLab,        // 8-bit Lab in four bytes, the last one unused
    signedLabFrom8,   // 8-bit Lab with extra channels, widened to 16 bits
    signedLabFrom16,  // 16-bit Lab, missing the lowest bit of the lightness
};

// `depth` is that of the file's samples.
SampleForm FormOf(const VipsImage *image, int32_t depth);
// Samples per pixel that are in use.
int32_t PlanesOf(VipsImage *image);

// Takes one row.
void TakeSamples(SampleForm form, const void *row, const Document &document, uint8_t *samples);
