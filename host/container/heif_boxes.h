// The metadata in the boxes of HEIC and AVIF files.
#pragma once

#include <string>

#include "host/container/byte_file.h"

struct HeifMetadata {
    std::string exif;  // from the byte order on
    std::string xmp;
    std::string profile;
    int quarterTurns =
        0;  // to the left, before the picture is shown; of outputs only, as inputs are read turned
};

// False for what is no such file, or damaged.
bool ReadHeifMetadata(const ByteFile &file, HeifMetadata *metadata);

// Adds to a file of one picture that holds no metadata yet; what is empty is left out. False, with errno,
// when the file cannot be written, or is of another make.
bool AddHeifMetadata(const HeifMetadata &metadata, ByteFile *file);
