// Images that outlive a run in their backing files, for later runs and other filters of the family.
#pragma once

#include "imagestore/named_images.h"

OSErr MakeImage2(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image);
OSErr MakeImage2Dup16(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image);
OSErr MakeImageFFT(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image);

// Opens a kept image. A file that cannot be opened is deleted; a short header gives eofErr, negative
// dimensions paramErr. On failure `*image` is null.
OSErr OpenNamedImage(ConstStringPtr name, NamedImage **image);
OSErr OpenImage2(NamedImage **image);
OSErr OpenImage2Dup16(NamedImage **image);
OSErr OpenImageFFT(NamedImage **image);

// Releases the image. If it is to be kept, its contents stay in its file; otherwise it is tossed.
OSErr CloseNamedImage(NamedImage *image);
OSErr CloseImage2(NamedImage *image);
OSErr CloseImage2Dup16(NamedImage *image);
OSErr CloseImageFFT(NamedImage *image);

// Releases the image and deletes its file; a null image only deletes the file.
OSErr TossImage2(NamedImage *image);
OSErr TossImage2Dup16(NamedImage *image);
OSErr TossImageFFT(NamedImage *image);

// Reads a backing file's header; zeros when the file cannot be opened.
OSErr GetNamedImageDimensions(ConstStringPtr name, int16_t *width, int16_t *height, int16_t *bytesPerPixel);
