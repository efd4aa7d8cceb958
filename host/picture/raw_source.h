// Picture files as the picture library is to see them.
#pragma once

#include <string>

#include "host/picture/vips_library.h"

// The library halves the lightness of 16-bit Lab and divides associated alpha out of the colours. So it is
// shown a header that says RGB and unassociated alpha, and delivers all samples as they are. Null if the file
// cannot be opened.
OwnedObject<VipsSource> OpenRawSource(const std::string &file);
