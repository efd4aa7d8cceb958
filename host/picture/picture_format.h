// The formats of output files: what each can hold, and how to save it.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/document/document.h"
#include "host/picture/storage.h"
#include "host/report/failure.h"

struct _VipsImage;

// The output's name tells its format.
constexpr int32_t kFormatOfName = -1;

// What the user may decide about how a picture is stored.
struct SaveOptions {
    int32_t format = kFormatOfName;           // otherwise a number from FormatNamed
    std::optional<int32_t> compressionLevel;  // of PNG: 0 to 9
    StorageChoice storage;
    bool stamp = false;  // the output says when and by what it was written
};

struct PictureFormat {
    const char *name;
    const char *suffixes[3];  // with the dot, in lower case; all but the first may be null
    int32_t maxDepth;         // bits per sample
    int32_t maxExtraPlanes;
    int32_t maxSide;                 // in pixels
    std::string_view furtherSpaces;  // names of the colour spaces it holds besides grey and RGB
    bool writtenWhole;               // the picture library needs all of the picture before it writes
    bool needsHeif;                  // see vips_library.h
    // Writes pixels without metadata. Returns 0 for success; otherwise the picture library holds the error.
    int (*save)(_VipsImage *image, const char *path, const Storage &storage, const SaveOptions &options);
};

// Goes by the file name's suffix, in upper or lower case, unless a format is chosen.
MaybeFailure FindFormat(const std::string &file, int32_t chosen, const PictureFormat **format);

// That of a suffix without its dot; kFormatOfName for none.
int32_t FormatNamed(const std::string &suffix);

// That of what the file holds, whatever it is called; kFormatOfName for formats that are told by their names
// alone.
int32_t FormatOfContent(const std::string &file);

// Whether an output is a TIFF, which holds several pages.
bool IsTiff(const std::string &file, int32_t chosen);

// Refuses a choice that the format does not have, or that does not suit the picture.
MaybeFailure CheckChoice(const StorageChoice &choice, const PictureFormat &format, const Storage &storage,
                         const std::string &outputFile);

// Refuses a picture that the format would only hold in part, and names formats that can hold it.
MaybeFailure CheckFormatHolds(const PictureFormat &format, const Document &document,
                              const std::string &inputFile, const std::string &outputFile);
