// Work images, identified by name and read and written a line at a time.
//
// An image lives in memory, or, when there is not enough memory or the image is to outlive the run, in a
// backing file of its name in the Preferences folder. Both hold space for the 6-byte header, then the rows
// one after another. A new image is all zeros.
#pragma once

#include "platform/types.h"

struct ImageData {
    int16_t bytesPerPixel;
    int16_t width;
    int16_t height;
};
static_assert(sizeof(ImageData) == 6);

struct NamedImage {
    Boolean onDisk;   // a backing file is open, or should have been
    Boolean keep;     // the backing file outlives the image
    int16_t fileRef;  // -1 without a file
    ImageData data;   // also the header of the backing file, in native byte order
    Handle memory;    // null when every access goes to the file
    Ptr contents;     // what `memory` holds
    Str255 name;
    Boolean pivoted;  // for frequency-domain routines; always 0 here
};

// From now on images go to disk when those in memory would take more bytes than this together; 0 or less: no
// limit.
void LimitImageMemory(int64_t bytes);

// `*image` receives the image even on most failures; the caller must toss it exactly once. Negative
// dimensions count as 0. Returns noErr, memFullErr or a File Manager error; dskFulErr when the file could not
// be filled, and LockFolder's error (platform/locks.h) when the folder could not be locked.
OSErr MakeNamedImage(ConstStringPtr name, Boolean keep, int16_t width, int16_t height, int16_t bytesPerPixel,
                     NamedImage **image);
// Releases the image and deletes the file `name` if the image had one, or if `image` is null.
OSErr TossNamedImage(ConstStringPtr name, NamedImage *image);

// One live image per name; making another deletes the earlier one's file.
OSErr MakeImage(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image);
OSErr MakeTempImage(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image);
OSErr MakeAlphaImage(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image);
OSErr MakeSelectionImage(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image);

// TossImage ignores a null image; the others still delete a leftover file of their name.
OSErr TossImage(NamedImage *image);
OSErr TossTempImage(NamedImage *image);
OSErr TossAlphaImage(NamedImage *image);
OSErr TossSelectionImage(NamedImage *image);

// Copy `count` bytes to or from row `y`, starting at byte `x` of the row. Anything outside the image is
// silently ignored; copying stops at the row's end. For an image on disk, returns the File Manager's error:
// rows are then missing, and continuing the run would produce a damaged picture.
OSErr PutLine(NamedImage *image, int32_t x, int32_t y, int32_t count, const void *buffer);
OSErr GetLine(NamedImage *image, int32_t x, int32_t y, int32_t count, void *buffer);

// Gives zeros for a null image.
void GetImageData(const NamedImage *image, ImageData *data);
