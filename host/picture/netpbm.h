// PGM, PPM and PAM files: a header of text, and samples as they are. The library's own reader of them is not
// meant for strangers' files.
#pragma once

#include <string>

#include "host/picture/vips_library.h"
#include "host/report/failure.h"

// Leaves the image null for files of other kinds. Those of text or single bits are refused, and those whose
// samples do not go up to 255 or 65535.
MaybeFailure OpenNetpbm(const std::string &file, OwnedObject<VipsImage> *image);

// Grey or RGB, of 8 or 16 bits. As the library's calls, these return 0 for success.
int SavePpm(VipsImage *image, const char *path);
// Also with transparency.
int SavePam(VipsImage *image, const char *path);
