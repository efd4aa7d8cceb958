// The formats of output files: what each can hold, and how it is saved.
#pragma once

#include <string>
#include <string_view>

#include "host/document/document.h"
#include "host/report/failure.h"

struct _VipsImage;

struct PictureFormat {
    const char *name;
    const char *suffixes[2];  // with the dot, in lower case; the second may be null
    int32_t maxDepth;
    int32_t maxExtraPlanes;
    int32_t maxSide;
    std::string_view furtherSpaces;  // names of colour spaces that it holds beside grey and RGB
    struct {
        const char *field;  // of the library's metadata; null when all kinds are kept
        const char *name;
    } lost;  // the kind of metadata that would not be in the file
    // 0 for success, else the picture library holds the error.
    int (*save)(_VipsImage *image, const char *path);
};

// By the file name's suffix, in either case.
MaybeFailure FindFormat(const std::string &file, const PictureFormat **format);

// Refuses a picture that the format would hold in part only, and names what can hold it.
MaybeFailure CheckFormatHolds(const PictureFormat &format, const Document &document,
                              const std::string &inputFile, const std::string &outputFile);

// What users call the metadata that would be lost; empty when all is kept.
std::string LostMetadata(const PictureFormat &format, _VipsImage *metadata);
