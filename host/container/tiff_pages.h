// The pages of a TIFF, taken apart and joined without decoding them: strips and tiles move as they are, with
// all tags, whatever the sizes and kinds of the pages.
#pragma once

#include <cstdint>
#include <vector>

#include "host/container/tiff_directory.h"

struct TiffPage {
    uint64_t place = 0;    // of its directory
    uint64_t subfile = 0;  // its kind: a page of many, a smaller copy ...; 0 for none
    int32_t bits = 1;      // of its first sample
    uint64_t bytes = 0;    // of its samples, unpacked
};

// In the file's order; those behind a damaged one are not found. Empty for what is no TIFF.
std::vector<TiffPage> PagesOfTiff(const ByteFile &file);

// A TIFF that is being made, page by page.
struct TiffJoiner {
    ByteFile *file = nullptr;
    TiffForm form;
    uint64_t field = 0;  // where the next page's place goes
};

// Starts an empty file. The pages' pixels together must stay below 4 GiB, unless it is a BigTIFF.
bool StartTiff(const TiffForm &form, ByteFile *file, TiffJoiner *joiner);

// Samples of more than 8 bits are in their file's byte order, also when they are packed: only a file of the
// same order takes them.
bool CanJoin(const TiffSource &from, const TiffPage &page, const TiffJoiner &joiner);

// Appends a page with all that it points to, as a subfile of the given kind. Takes memory for its tags alone.
// False, with errno, when a file cannot be read or written.
bool AppendPage(const TiffSource &from, const TiffPage &page, const ByteFile &file, TiffJoiner *joiner);
