#include "imagestore/kept_images.h"

#include "imagestore/image_storage.h"
#include "imagestore/strings.h"
#include "platform/files.h"
#include "platform/memory.h"

namespace {

constexpr uint8_t kImage2Name[] = "\012PSsecImage";
constexpr uint8_t kImage2Dup16Name[] = "\017PSsecImageDup16";
constexpr uint8_t kImageFFTName[] = "\010FFTImage";

OSErr OpenImageFile(ConstStringPtr name, int16_t *fileRef) {
    const Folder folder = PreferencesFolder();
    return HOpen(folder.vRefNum, folder.dirID, name, fsRdWrPerm, fileRef);
}

OSErr ReadHeader(NamedImage *image) {
    const OSErr err = ReadAt(image->fileRef, 0, kImageHeaderSize, &image->data);
    const bool negative = image->data.width < 0 || image->data.height < 0 || image->data.bytesPerPixel < 0;
    return err == noErr && negative ? paramErr : err;
}

// Without enough memory the image stays in its file.
void CopyIntoMemory(NamedImage *image) {
    if (TakeImageMemory(image) == noErr) {
        ReadAt(image->fileRef, kImageHeaderSize, ImageContentsSize(image) - kImageHeaderSize,
               image->contents + kImageHeaderSize);
    }
}

OSErr CopyIntoFile(const NamedImage *image) {
    return WriteAt(image->fileRef, kImageHeaderSize, ImageContentsSize(image) - kImageHeaderSize,
                   image->contents + kImageHeaderSize);
}

}  // namespace

OSErr MakeImage2(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image) {
    return MakeNamedImage(kImage2Name, true, width, height, bytesPerPixel, image);
}

OSErr MakeImage2Dup16(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image) {
    return MakeNamedImage(kImage2Dup16Name, true, width, height, bytesPerPixel, image);
}

OSErr MakeImageFFT(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image) {
    return MakeNamedImage(kImageFFTName, true, width, height, bytesPerPixel, image);
}

OSErr OpenNamedImage(ConstStringPtr name, NamedImage **image) {
    *image = nullptr;
    auto *opened = reinterpret_cast<NamedImage *>(NewPtrClear(sizeof(NamedImage)));
    if (opened == nullptr) {
        return memFullErr;
    }
    OSErr err = OpenImageFile(name, &opened->fileRef);
    if (err != noErr) {
        DeleteImageFile(name);
    } else {
        err = ReadHeader(opened);
        if (err != noErr) {
            FSClose(opened->fileRef);
        }
    }
    if (err != noErr) {
        DisposePtr(reinterpret_cast<Ptr>(opened));
        return err;
    }
    opened->onDisk = true;
    opened->keep = true;
    DuplicatePString(name, opened->name);
    CopyIntoMemory(opened);
    *image = opened;
    return noErr;
}

OSErr OpenImage2(NamedImage **image) {
    return OpenNamedImage(kImage2Name, image);
}

OSErr OpenImage2Dup16(NamedImage **image) {
    return OpenNamedImage(kImage2Dup16Name, image);
}

OSErr OpenImageFFT(NamedImage **image) {
    return OpenNamedImage(kImageFFTName, image);
}

OSErr CloseNamedImage(NamedImage *image) {
    if (image == nullptr) {
        return noErr;
    }
    if (!image->keep) {
        return TossNamedImage(image->name, image);
    }
    OSErr err = noErr;
    if (image->fileRef != kNoImageFile) {
        if (image->memory != nullptr) {
            err = CopyIntoFile(image);
        }
        FSClose(image->fileRef);
    }
    ReleaseImageMemory(image);
    DisposePtr(reinterpret_cast<Ptr>(image));
    return err;
}

OSErr CloseImage2(NamedImage *image) {
    return CloseNamedImage(image);
}

OSErr CloseImage2Dup16(NamedImage *image) {
    return CloseNamedImage(image);
}

OSErr CloseImageFFT(NamedImage *image) {
    return CloseNamedImage(image);
}

OSErr TossImage2(NamedImage *image) {
    return TossNamedImage(kImage2Name, image);
}

OSErr TossImage2Dup16(NamedImage *image) {
    return TossNamedImage(kImage2Dup16Name, image);
}

OSErr TossImageFFT(NamedImage *image) {
    return TossNamedImage(kImageFFTName, image);
}

OSErr GetNamedImageDimensions(ConstStringPtr name, int16_t *width, int16_t *height, int16_t *bytesPerPixel) {
    ImageData data = {};
    int16_t fileRef;
    OSErr err = OpenImageFile(name, &fileRef);
    if (err == noErr) {
        err = ReadAt(fileRef, 0, kImageHeaderSize, &data);
        FSClose(fileRef);
    }
    *width = data.width;
    *height = data.height;
    *bytesPerPixel = data.bytesPerPixel;
    return err;
}
