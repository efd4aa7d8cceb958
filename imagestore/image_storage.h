// How an image's bytes lie, and the memory and file behind them. Internal to this folder.
#pragma once

#include "imagestore/named_images.h"
#include "imagestore/preferences_folder.h"

constexpr int64_t kImageHeaderSize = sizeof(ImageData);
constexpr int16_t kNoImageFile = -1;

int64_t ImageRowBytes(const NamedImage *image);
int64_t ImageRowOffset(const NamedImage *image, int64_t y);
// Header place and all rows.
int64_t ImageContentsSize(const NamedImage *image);

// Takes memory, all zeros, for the contents where it is there and the image not too large for it.
OSErr TakeImageMemory(NamedImage *image);
void ReleaseImageMemory(NamedImage *image);

OSErr WriteAt(int16_t fileRef, int64_t offset, int64_t count, const void *bytes);
OSErr ReadAt(int16_t fileRef, int64_t offset, int64_t count, void *bytes);

// Deletes the file of that name in the Preferences folder, under the folder's lock.
OSErr DeleteImageFile(ConstStringPtr name);
