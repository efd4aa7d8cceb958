// The formats of output files: what each can hold, and how to save it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/document/document.h"
#include "host/report/failure.h"

struct _VipsImage;

// What the user may decide about how a picture is stored.
struct SaveOptions {
    std::optional<int32_t> compressionLevel;  // of PNG: 0 to 9
};

struct PictureFormat {
    const char *name;
    const char *suffixes[2];  // with the dot, in lower case; the second may be null
    int32_t maxDepth;         // bits per sample
    int32_t maxExtraPlanes;
    int32_t maxSide;                 // in pixels
    std::string_view furtherSpaces;  // names of the colour spaces it holds besides grey and RGB
    struct {
        const char *field;  // the library's name of it; null when all kinds are kept
        const char *name;
    } lost;             // the kind of metadata that the format cannot hold
    bool writtenWhole;  // the picture library needs all of the picture before it writes
    // Returns 0 for success; otherwise the picture library holds the error.
    int (*save)(_VipsImage *image, const char *path, const SaveOptions &options);
};

// Goes by the file name's suffix, in upper or lower case.
MaybeFailure FindFormat(const std::string &file, const PictureFormat **format);

// Refuses a picture that the format would only hold in part, and names formats that can hold it.
MaybeFailure CheckFormatHolds(const PictureFormat &format, const Document &document,
                              const std::string &inputFile, const std::string &outputFile);

// What users call the metadata that would be lost; empty when all is kept.
std::string LostMetadata(const PictureFormat &format, _VipsImage *metadata);
