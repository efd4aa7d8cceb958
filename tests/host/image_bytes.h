// What other programs' readers make of a picture.
#pragma once

#include <vips/vips.h>

#include <string>

// All samples of the image, row by row. Empty if there is no image, or if its pixels cannot be read.
std::string BytesOf(VipsImage *image);
