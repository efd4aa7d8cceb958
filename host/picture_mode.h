// The kinds of pictures that can be filtered: documents' modes on one side, sample formats and colour spaces
// of files on the other.
#pragma once

#include <vips/vips.h>

#include <cstdint>
#include <string>

struct PictureMode {
    int16_t imageMode;  // as in photoshop/image_modes.h
    int32_t depth;
    int32_t colorPlanes;
    const char *name;  // of the colour space
    VipsBandFormat format;
    VipsInterpretation interpretation;  // what a file of this kind is written with
};

// Null for a colour space or a sample format that is not supported.
const PictureMode *ModeOfFile(VipsInterpretation interpretation, VipsBandFormat format);
// Of a document's mode, which is always known.
const PictureMode &ModeOfDocument(int16_t imageMode);

// 0 for a colour space that is not supported.
int32_t ColorPlanesOf(VipsInterpretation interpretation);
// As users know it: "CMYK".
std::string ColorSpaceName(VipsInterpretation interpretation);
