// An opened picture file: the document's shape, the rows to be read, and what else the file holds.
#pragma once

#include <string>
#include <vector>

#include "host/document/document.h"
#include "host/picture/picture_samples.h"
#include "host/picture/storage.h"
#include "host/picture/vips_library.h"
#include "host/report/failure.h"
#include "host/report/watcher.h"

struct Picture {
    std::string file;
    Document document;  // blocks only where all of it must be in memory
    // Resolution, profile, EXIF, XMP and the like, on an image without pixels.
    OwnedObject<VipsImage> metadata;
    // The open file, until its pixels have been read.
    OwnedObject<VipsImage> unread;
    std::vector<uint16_t> extraSamples;  // the kind of each extra plane, as in file_probe.h
    Storage storage;                     // of the file, and then of the output
};

// Opens the file and fills in everything but the document's blocks. Refuses what cannot be filtered, and
// files that would lose something, such as further pages.
MaybeFailure OpenPicture(const std::string &file, Picture *picture);

// Whether the picture library must have all of the file in memory, since its rows are not stored one after
// the other.
bool IsReadWhole(const Picture &picture);

// Reads an opened picture's rows from top to bottom.
struct RowReader {
    Picture *picture = nullptr;
    OwnedObject<VipsRegion> region = nullptr;
    int32_t rows = 0;  // read so far
};

RowReader StartReading(Picture *picture);
// Reads the next `count` rows into both blocks of a document of the picture's kind, from the document's row
// `to` on. After the last row it closes the file. A truncated file is a failure.
MaybeFailure ReadRows(RowReader *reader, int32_t count, Document *document, int64_t to);

// Reads all of them into the picture's own document, whose blocks it maps.
MaybeFailure ReadPixels(Picture *picture, const Watcher &watcher);

// How many of the picture's rows to read between two checks for cancelling.
int32_t StripHeight(const DocumentShape &document);

MaybeFailure TooLittleMemory(const std::string &file);

// "3000 x 2000"
std::string SizeOf(const Document &document);
// "3000 x 2000 RGB, 16 bits"
std::string DescribePicture(const Picture &picture);

// Copies everything except how the file was encoded. The resolution is included.
void CopyMetadata(VipsImage *from, VipsImage *to);
