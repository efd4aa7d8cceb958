#include "imagestore/named_images.h"

#include <algorithm>
#include <cstring>

#include "imagestore/image_storage.h"
#include "imagestore/strings.h"
#include "platform/files.h"
#include "platform/locks.h"
#include "platform/owned_block.h"

namespace {

constexpr int64_t kClearingBlockSize = 0x80000;

// The codes of backing files; they look like placeholders, but they are the real ones.
constexpr OSType kCreator = FourCharCode("CREA");
constexpr OSType kFileType = FourCharCode("TYPE");

constexpr uint8_t kBackingStoreName[] = "\014BackingStore";
constexpr uint8_t kTempImageName[] = "\011TempImage";
constexpr uint8_t kAlphaImageName[] = "\012AlphaImage";
constexpr uint8_t kSelectionImageName[] = "\016SelectionImage";

OSErr WriteHeader(const NamedImage *image) {
    return WriteAt(image->fileRef, 0, kImageHeaderSize, &image->data);
}

// Used when a block of zeros could be allocated. A zero-sized image makes one empty write.
OSErr ClearInBlocks(NamedImage *image, const void *zeros) {
    if (image->memory == nullptr) {
        WriteHeader(image);
    }
    OSErr err = noErr;
    int64_t offset = kImageHeaderSize;
    do {
        int64_t count = std::min(ImageContentsSize(image) - offset, kClearingBlockSize);
        if (image->memory != nullptr) {
            BlockMoveData(zeros, image->contents + offset, count);
        } else {
            err = FSWrite(image->fileRef, &count, zeros);
        }
        offset += kClearingBlockSize;
    } while (err == noErr && offset < ImageContentsSize(image));
    return err;
}

OSErr ClearInRows(NamedImage *image) {
    const OwnedBlock<uint8_t> row = MakeOwnedBlock<uint8_t>(ImageRowBytes(image));
    if (row == nullptr) {
        return memFullErr;
    }
    for (int32_t y = 0; y < image->data.height; ++y) {
        if (image->memory != nullptr) {
            BlockMoveData(row.get(), image->contents + ImageRowOffset(image, y), ImageRowBytes(image));
        } else {
            WriteAt(image->fileRef, ImageRowOffset(image, y), ImageRowBytes(image), row.get());
        }
    }
    return noErr;
}

OSErr _ClearFile(NamedImage *image) {
    const OwnedBlock<uint8_t> zeros = MakeOwnedBlock<uint8_t>(kClearingBlockSize);
    return zeros == nullptr ? ClearInRows(image) : ClearInBlocks(image, zeros.get());
}

OSErr OpenBackingFile(Folder folder, ConstStringPtr name, NamedImage *image) {
    OSErr err = HCreate(folder.vRefNum, folder.dirID, name, kCreator, kFileType);
    if (err != noErr) {
        return err;
    }
    err = HOpen(folder.vRefNum, folder.dirID, name, fsRdWrPerm, &image->fileRef);
    if (err != noErr) {
        HDelete(folder.vRefNum, folder.dirID, name);
        image->fileRef = kNoImageFile;
    }
    return err;
}

// Contiguous space keeps row seeks cheap. If there is too little, clearing fails.
OSErr FillBackingFile(NamedImage *image) {
    WriteHeader(image);
    int64_t size = ImageContentsSize(image);
    AllocContig(image->fileRef, &size);
    if (_ClearFile(image) == noErr) {
        return noErr;
    }
    FSClose(image->fileRef);
    image->fileRef = kNoImageFile;
    // Always this name, whichever image is being made.
    DeleteImageFile(kBackingStoreName);
    return dskFulErr;
}

// The position of a run of bytes; empty when there is nothing to copy.
struct Span {
    int64_t offset;
    int64_t count;
};

Span FindSpan(const NamedImage *image, int32_t x, int32_t y, int32_t count) {
    if (image == nullptr || x < 0 || x >= ImageRowBytes(image) || y < 0 || y >= image->data.height) {
        return {0, 0};
    }
    return {ImageRowOffset(image, y) + x, std::clamp<int64_t>(count, 0, ImageRowBytes(image) - x)};
}

}  // namespace

OSErr MakeNamedImage(ConstStringPtr name, Boolean keep, int16_t width, int16_t height, int16_t bytesPerPixel,
                     NamedImage **image) {
    *image = reinterpret_cast<NamedImage *>(NewPtrClear(sizeof(NamedImage)));
    NamedImage *made = *image;
    if (made == nullptr) {
        return memFullErr;
    }
    made->fileRef = kNoImageFile;
    made->keep = keep;
    made->data = {std::max<int16_t>(bytesPerPixel, 0), std::max<int16_t>(width, 0),
                  std::max<int16_t>(height, 0)};
    DuplicatePString(name, made->name);

    made->onDisk = TakeImageMemory(made) != noErr || keep != 0;
    const Folder folder = made->onDisk ? WritablePreferencesFolder() : PreferencesFolder();
    // Another process may be making an image of this name in the same folder.
    FolderLock lock;
    OSErr err = LockFolder(folder.vRefNum, folder.dirID, &lock);
    if (err == noErr) {
        HDelete(folder.vRefNum, folder.dirID, name);
    }
    if (err == noErr && made->onDisk) {
        err = OpenBackingFile(folder, name, made);
    }
    UnlockFolder(lock);

    if (!made->onDisk) {
        _ClearFile(made);
        return noErr;
    }
    return err != noErr ? err : FillBackingFile(made);
}

OSErr TossNamedImage(ConstStringPtr name, NamedImage *image) {
    if (image == nullptr) {
        return DeleteImageFile(name);
    }
    ReleaseImageMemory(image);
    if (image->onDisk) {
        if (image->fileRef != kNoImageFile) {
            FSClose(image->fileRef);
        }
        DeleteImageFile(name);
    }
    DisposePtr(reinterpret_cast<Ptr>(image));
    return noErr;
}

OSErr MakeImage(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image) {
    return MakeNamedImage(kBackingStoreName, false, width, height, bytesPerPixel, image);
}

OSErr MakeTempImage(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image) {
    return MakeNamedImage(kTempImageName, false, width, height, bytesPerPixel, image);
}

OSErr MakeAlphaImage(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image) {
    return MakeNamedImage(kAlphaImageName, false, width, height, bytesPerPixel, image);
}

OSErr MakeSelectionImage(int16_t width, int16_t height, int16_t bytesPerPixel, NamedImage **image) {
    return MakeNamedImage(kSelectionImageName, false, width, height, bytesPerPixel, image);
}

OSErr TossImage(NamedImage *image) {
    return image == nullptr ? noErr : TossNamedImage(image->name, image);
}

OSErr TossTempImage(NamedImage *image) {
    return TossNamedImage(kTempImageName, image);
}

OSErr TossAlphaImage(NamedImage *image) {
    return TossNamedImage(kAlphaImageName, image);
}

OSErr TossSelectionImage(NamedImage *image) {
    return TossNamedImage(kSelectionImageName, image);
}

OSErr PutLine(NamedImage *image, int32_t x, int32_t y, int32_t count, const void *buffer) {
    const Span span = FindSpan(image, x, y, count);
    if (span.count == 0) {
        return noErr;
    }
    if (image->memory != nullptr) {
        BlockMoveData(buffer, image->contents + span.offset, span.count);
        return noErr;
    }
    return WriteAt(image->fileRef, span.offset, span.count, buffer);
}

OSErr GetLine(NamedImage *image, int32_t x, int32_t y, int32_t count, void *buffer) {
    const Span span = FindSpan(image, x, y, count);
    if (span.count == 0) {
        return noErr;
    }
    if (image->memory != nullptr) {
        BlockMoveData(image->contents + span.offset, buffer, span.count);
        return noErr;
    }
    return ReadAt(image->fileRef, span.offset, span.count, buffer);
}

void GetImageData(const NamedImage *image, ImageData *data) {
    *data = image == nullptr ? ImageData{} : image->data;
}
