// Work images, addressed by name and read and written a line at a time.
//
// An image lives in memory, or in a backing file of its name in the Preferences folder when memory cannot be
// had or when it is to be kept after the run. Rows lie one after another behind a place for the 6-byte
// header, in memory and in a file alike. A new image is all zeros.
#pragma once

#include "platform/types.h"

struct ImageData {
    int16_t bytesPerPixel;
    int16_t width;
    int16_t height;
};
static_assert(sizeof(ImageData) == 6);

struct NamedImage {
    Boolean onDisk;   // a backing file is open, or was to be
    Boolean keep;     // the backing file outlives the image
    int16_t fileRef;  // -1 without a file
    ImageData data;   // also the header of the backing file, in native byte order
    Handle memory;    // null when every access goes to the file
    Ptr contents;     // what `memory` holds
    Str255 name;
    Boolean pivoted;  // for frequency-domain routines; always 0 here
};

// `*image` receives the image also on most failures; whoever called makes exactly one toss of it. Negative
// dimensions count as 0. Returns noErr, memFullErr or a File Manager error; dskFulErr when the file could not
// be filled, and what LockFolder gives (platform/locks.h) when the folder could not be locked for it.
OSErr MakeNamedImage(ConstStringPtr name, Boolean keep, int16_t width, int16_t height, int16_t bytesPerPixel,
                     NamedImage **image);
// Releases the image and deletes the file `name` if the image had one, or if `image` is null.
OSErr TossNamedImage(ConstStringPtr name, NamedImage *image);

// One live image per name; making another deletes the earlier one's file.
OSErr MakeImage(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image);
OSErr MakeTempImage(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image);
OSErr MakeAlphaImage(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image);
OSErr MakeSelectionImage(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image);

// A null image is nothing to TossImage; the others still delete a left-over file of their name.
OSErr TossImage(NamedImage *image);
OSErr TossTempImage(NamedImage *image);
OSErr TossAlphaImage(NamedImage *image);
OSErr TossSelectionImage(NamedImage *image);

// Copy `count` bytes to or from row `y`, starting at byte `x` of the row. What lies outside the image is
// silently left alone, and a run ends at the row's end. Returns the File Manager's error where the image is
// on disk: rows are then missing, and a run that goes on would give a damaged picture.
OSErr PutLine(NamedImage *image, int32_t x, int32_t y, int32_t count, const void *buffer);
OSErr GetLine(NamedImage *image, int32_t x, int32_t y, int32_t count, void *buffer);

// Zeros for a null image.
void GetImageData(const NamedImage *image, ImageData *data);
