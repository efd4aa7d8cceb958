// A picture file read into memory: the document, and what else the file held.
#pragma once

#include <string>

#include "host/document/document.h"
#include "host/picture/picture_samples.h"
#include "host/picture/vips_library.h"
#include "host/report/failure.h"
#include "host/report/watcher.h"

struct Picture {
    std::string file;
    Document document;
    // Resolution, profile, EXIF, XMP and the like, on an image without pixels.
    OwnedObject<VipsImage> metadata;
    // The open file, until its pixels have been read.
    OwnedObject<VipsImage> unread;
    SampleForm form = SampleForm::asInFile;
};

// Opens the file and fills in everything but the document's blocks. Refuses what cannot be filtered, and
// files that would lose something, such as further pages.
MaybeFailure OpenPicture(const std::string &file, Picture *picture);

// Refuses an opened picture that is larger, before any memory is allocated for its pixels.
MaybeFailure CheckSize(const Picture &picture, int32_t maxMegapixels);

// Reads an opened picture's pixels into both blocks of its document, from top to bottom.
struct PixelReader {
    Picture *picture = nullptr;
    OwnedObject<VipsRegion> region;
    int32_t rows = 0;  // read so far
};

// Maps both blocks.
MaybeFailure StartReading(Picture *picture, PixelReader *reader);
// Reads some more rows; after the last one it closes the file. A truncated file is a failure.
MaybeFailure ReadSomeRows(PixelReader *reader, const Watcher &watcher);
bool IsAllRead(const PixelReader &reader);

// Reads all of them.
MaybeFailure ReadPixels(Picture *picture, const Watcher &watcher);

// "3000 x 2000"
std::string SizeOf(const Document &document);
// "3000 x 2000 RGB, 16 bits"
std::string DescribePicture(const Picture &picture);

// Copies everything except how the file was encoded. The resolution is included.
void CopyMetadata(VipsImage *from, VipsImage *to);
