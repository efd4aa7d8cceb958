// The kinds of pictures that can be filtered: documents' modes on one side, sample formats and colour spaces
// of files on the other.
#pragma once

#include <vips/vips.h>

#include <cstdint>
#include <string>

#include "host/document/document_mode.h"

struct PictureMode {
    int16_t imageMode;  // as in photoshop/image_modes.h
    VipsBandFormat format;
    VipsInterpretation interpretation;  // what a file of this kind is written with
    // Bits in which a document's colour samples differ from a file's: 8-bit CMYK is inverted, a and b of Lab
    // have a sign in files.
    uint16_t flips[kMaxColorPlanes];
};

// Null for a colour space or a sample format that is not supported. `depth` is that of the file's samples,
// where the library delivers them as something else.
const PictureMode *ModeOfFile(VipsInterpretation interpretation, VipsBandFormat format, int32_t depth);
// Of a document's mode, which is always known.
const PictureMode &ModeOfDocument(int16_t imageMode);

// 0 for a colour space that is not supported.
int32_t ColorPlanesOf(VipsInterpretation interpretation);
// As users know it: "CMYK".
std::string ColorSpaceName(VipsInterpretation interpretation);
