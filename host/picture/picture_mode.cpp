#include "host/picture/picture_mode.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "photoshop/image_modes.h"

namespace {

constexpr PictureMode kModes[] = {
    {plugInModeGrayScale, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W, {}},
    {plugInModeGray16, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_GREY16, {}},
    {plugInModeGray32, VIPS_FORMAT_FLOAT, VIPS_INTERPRETATION_B_W, {}},
    {plugInModeRGBColor, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_sRGB, {}},
    {plugInModeRGB48, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_RGB16, {}},
    {plugInModeRGB96, VIPS_FORMAT_FLOAT, VIPS_INTERPRETATION_scRGB, {}},
    {plugInModeLabColor, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_LAB, {0, 0x80, 0x80}},
    {plugInModeLab48, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_LAB, {0, 0x8000, 0x8000}},
    {plugInModeCMYKColor, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_CMYK, {255, 255, 255, 255}},
    {plugInModeCMYK64, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_CMYK, {}},
};

struct ColorSpace {
    VipsInterpretation interpretation;
    int32_t colorPlanes;  // 0: not supported
    const char *name;
};

constexpr ColorSpace kColorSpaces[] = {
    {VIPS_INTERPRETATION_B_W, 1, "grey"},  {VIPS_INTERPRETATION_GREY16, 1, "grey"},
    {VIPS_INTERPRETATION_sRGB, 3, "RGB"},  {VIPS_INTERPRETATION_RGB, 3, "RGB"},
    {VIPS_INTERPRETATION_RGB16, 3, "RGB"}, {VIPS_INTERPRETATION_scRGB, 3, "RGB"},
    {VIPS_INTERPRETATION_CMYK, 4, "CMYK"}, {VIPS_INTERPRETATION_LAB, 3, "Lab"},
    {VIPS_INTERPRETATION_XYZ, 0, "XYZ"},   {VIPS_INTERPRETATION_MULTIBAND, 0, "multichannel"},
};

const ColorSpace *FindColorSpace(VipsInterpretation interpretation) {
    const auto *found =
        std::find_if(std::begin(kColorSpaces), std::end(kColorSpaces),
                     [=](const ColorSpace &space) { return space.interpretation == interpretation; });
    return found == std::end(kColorSpaces) ? nullptr : found;
}

}  // namespace

const PictureMode *ModeOfFile(VipsInterpretation interpretation, VipsBandFormat format) {
    const ColorSpace *space = FindColorSpace(interpretation);
    const auto *found = std::find_if(std::begin(kModes), std::end(kModes), [=](const PictureMode &mode) {
        return space != nullptr && std::strcmp(ModeOf(mode.imageMode).colors, space->name) == 0 &&
               mode.format == format;
    });
    return found == std::end(kModes) ? nullptr : found;
}

const PictureMode &ModeOfDocument(int16_t imageMode) {
    return *std::find_if(std::begin(kModes), std::end(kModes),
                         [=](const PictureMode &mode) { return mode.imageMode == imageMode; });
}

int32_t ColorPlanesOf(VipsInterpretation interpretation) {
    const ColorSpace *space = FindColorSpace(interpretation);
    return space == nullptr ? 0 : space->colorPlanes;
}

std::string ColorSpaceName(VipsInterpretation interpretation) {
    const ColorSpace *space = FindColorSpace(interpretation);
    return space == nullptr ? vips_enum_nick(VIPS_TYPE_INTERPRETATION, interpretation) : space->name;
}
