// Document modes, as the interface numbers them and as users know them.
#pragma once

#include <cstdint>
#include <string>

constexpr int32_t kMaxColorPlanes = 4;

struct DocumentMode {
    int16_t imageMode;    // as in photoshop/image_modes.h
    const char *colors;   // "grey"
    int32_t depth;        // bits per sample; 0 if the mode only comes in one depth
    int32_t colorPlanes;  // 0 for a mode that no document here has
};

// For any mode of the interface.
const DocumentMode &ModeOf(int16_t imageMode);
// "grey 8"
std::string ModeName(int16_t imageMode);
