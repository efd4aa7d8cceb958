// The colours a port must have when pictures are copied into it: any others would tint the copy.
#pragma once

#include "platform/quickdraw.h"

inline void SetCopyColors() {
    constexpr RGBColor kWhite = {0xFFFF, 0xFFFF, 0xFFFF};
    constexpr RGBColor kBlack = {0, 0, 0};
    RGBBackColor(&kWhite);
    RGBForeColor(&kBlack);
}
