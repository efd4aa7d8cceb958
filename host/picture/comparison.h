// Before and after, side by side, for the eye: 8-bit sRGB, upright, without further channels.
#pragma once

#include <string>

#include "host/picture/picture.h"
#include "host/report/failure.h"

// Writes a PNG to `path`; messages speak of `file`. Large pictures are cut down to their middle.
MaybeFailure WriteComparison(const Picture &picture, const std::string &path, const std::string &file);
