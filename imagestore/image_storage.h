// The layout of an image's bytes, and the memory and file behind them. Internal to this folder.
#pragma once

#include "imagestore/named_images.h"
#include "imagestore/preferences_folder.h"

constexpr int64_t kImageHeaderSize = sizeof(ImageData);
constexpr int16_t kNoImageFile = -1;

int64_t ImageRowBytes(const NamedImage *image);
int64_t ImageRowOffset(const NamedImage *image, int64_t y);
// The space for the header, and all rows.
int64_t ImageContentsSize(const NamedImage *image);

// Allocates zeroed memory for the contents, unless the image is too large to be kept in memory.
OSErr TakeImageMemory(NamedImage *image);
void ReleaseImageMemory(NamedImage *image);

OSErr WriteAt(int16_t fileRef, int64_t offset, int64_t count, const void *bytes);
OSErr ReadAt(int16_t fileRef, int64_t offset, int64_t count, void *bytes);

// Deletes the file of that name in the Preferences folder, under the folder's lock.
OSErr DeleteImageFile(ConstStringPtr name);
