#include "host/document/document_mode.h"

#include <algorithm>
#include <iterator>

#include "photoshop/image_modes.h"

namespace {

constexpr DocumentMode kModes[] = {
    {plugInModeGrayScale, "grey", 8, 1},
    {plugInModeGray16, "grey", 16, 1},
    {plugInModeGray32, "grey", 32, 1},
    {plugInModeRGBColor, "RGB", 8, 3},
    {plugInModeRGB48, "RGB", 16, 3},
    {plugInModeRGB96, "RGB", 32, 3},
    {plugInModeLabColor, "Lab", 8, 3},
    {plugInModeLab48, "Lab", 16, 3},
    {plugInModeCMYKColor, "CMYK", 8, 4},
    {plugInModeCMYK64, "CMYK", 16, 4},
    {plugInModeBitmap, "bilevel", 0, 0},
    {plugInModeIndexedColor, "indexed", 0, 0},
    {plugInModeHSLColor, "HSL", 0, 0},
    {plugInModeHSBColor, "HSB", 0, 0},
    {plugInModeMultichannel, "multichannel", 8, 0},
    {plugInModeDuotone, "duotone", 8, 0},
    {plugInModeDeepMultichannel, "multichannel", 16, 0},
    {plugInModeDuotone16, "duotone", 16, 0},
};
static_assert(std::size(kModes) == plugInModeCount);

}  // namespace

const DocumentMode &ModeOf(int16_t imageMode) {
    return *std::find_if(std::begin(kModes), std::end(kModes),
                         [=](const DocumentMode &mode) { return mode.imageMode == imageMode; });
}

std::string ModeName(int16_t imageMode) {
    const DocumentMode &mode = ModeOf(imageMode);
    return mode.depth == 0 ? mode.colors : std::string(mode.colors) + " " + std::to_string(mode.depth);
}
