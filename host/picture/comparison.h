// Before and after, side by side, to look at: 8-bit sRGB, upright, without extra channels.
#pragma once

#include <string>

#include "host/picture/picture.h"
#include "host/report/failure.h"

// Writes a PNG to `path`; messages name `file`. Large pictures are cropped to their middle.
MaybeFailure WriteComparison(const Picture &picture, const std::string &path, const std::string &file);
