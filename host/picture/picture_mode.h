// The kinds of pictures that can be filtered: document modes on one side, the sample formats and colour
// spaces of files on the other.
#pragma once

#include <vips/vips.h>

#include <cstdint>
#include <string>

#include "host/document/document_mode.h"

struct PictureMode {
    int16_t imageMode;  // as in photoshop/image_modes.h
    VipsBandFormat format;
    VipsInterpretation interpretation;  // what files of this kind are written with
    // The bits in which a document's colour samples differ from a file's: 8-bit CMYK is inverted, and a and b
    // of Lab are signed in files.
    uint16_t flips[kMaxColorPlanes];
};

// Null for an unsupported colour space or sample format.
const PictureMode *ModeOfFile(VipsInterpretation interpretation, VipsBandFormat format);
// For a document's mode, which is always known.
const PictureMode &ModeOfDocument(int16_t imageMode);

// 0 for an unsupported colour space.
int32_t ColorPlanesOf(VipsInterpretation interpretation);
// As users know it: "CMYK".
std::string ColorSpaceName(VipsInterpretation interpretation);
