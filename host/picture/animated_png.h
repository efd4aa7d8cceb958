// Animated PNG files, of which the picture library sees the first frame alone.
#pragma once

#include <string>

// False for other files, and for a PNG of a single frame.
bool IsAnimatedPng(const std::string &file);
