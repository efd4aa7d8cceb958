#include "imagestore/named_images.h"

#include <algorithm>
#include <cstring>

#include "imagestore/strings.h"
#include "platform/files.h"
#include "platform/locks.h"
#include "platform/owned_block.h"

namespace {

constexpr int64_t kHeaderSize = sizeof(ImageData);
constexpr int64_t kLargestMemoryImage = 0x20000008;  // 512 MiB and 8
constexpr int64_t kClearingBlockSize = 0x80000;
constexpr int16_t kNoFile = -1;

// The codes under which backing files are known, placeholders as they look.
constexpr OSType kCreator = FourCharCode("CREA");
constexpr OSType kFileType = FourCharCode("TYPE");

constexpr uint8_t kBackingStoreName[] = "\014BackingStore";
constexpr uint8_t kTempImageName[] = "\011TempImage";
constexpr uint8_t kAlphaImageName[] = "\012AlphaImage";
constexpr uint8_t kSelectionImageName[] = "\016SelectionImage";

struct Folder {
    int16_t vRefNum;
    int32_t dirID;
};

// A missing folder makes the file calls fail, which is all that callers need to know.
Folder PreferencesFolder() {
    Folder folder;
    FindFolder(kOnSystemDisk, kPreferencesFolderType, false, &folder.vRefNum, &folder.dirID);
    return folder;
}

int64_t RowBytes(const NamedImage *image) {
    return int64_t{image->data.width} * image->data.bytesPerPixel;
}

int64_t RowOffset(const NamedImage *image, int64_t y) {
    return kHeaderSize + y * RowBytes(image);
}

int64_t ContentsSize(const NamedImage *image) {
    return RowOffset(image, image->data.height);
}

OSErr WriteAt(int16_t fileRef, int64_t offset, int64_t count, const void *bytes) {
    const OSErr err = SetFPos(fileRef, fsFromStart, offset);
    return err != noErr ? err : FSWrite(fileRef, &count, bytes);
}

OSErr WriteHeader(const NamedImage *image) {
    return WriteAt(image->fileRef, 0, kHeaderSize, &image->data);
}

// Memory for one block of zeros could be had. A zero-sized image makes one empty write.
OSErr ClearInBlocks(NamedImage *image, const void *zeros) {
    if (image->memory == nullptr) {
        WriteHeader(image);
    }
    OSErr err = noErr;
    int64_t offset = kHeaderSize;
    do {
        int64_t count = std::min(ContentsSize(image) - offset, kClearingBlockSize);
        if (image->memory != nullptr) {
            BlockMoveData(zeros, image->contents + offset, count);
        } else {
            err = FSWrite(image->fileRef, &count, zeros);
        }
        offset += kClearingBlockSize;
    } while (err == noErr && offset < ContentsSize(image));
    return err;
}

OSErr ClearInRows(NamedImage *image) {
    const OwnedBlock<uint8_t> row = MakeOwnedBlock<uint8_t>(RowBytes(image));
    if (row == nullptr) {
        return memFullErr;
    }
    for (int32_t y = 0; y < image->data.height; ++y) {
        if (image->memory != nullptr) {
            BlockMoveData(row.get(), image->contents + RowOffset(image, y), RowBytes(image));
        } else {
            WriteAt(image->fileRef, RowOffset(image, y), RowBytes(image), row.get());
        }
    }
    return noErr;
}

OSErr _ClearFile(NamedImage *image) {
    const OwnedBlock<uint8_t> zeros = MakeOwnedBlock<uint8_t>(kClearingBlockSize);
    return zeros == nullptr ? ClearInRows(image) : ClearInBlocks(image, zeros.get());
}

// Takes memory for the contents where it is there and not too much.
OSErr TakeMemory(NamedImage *image) {
    if (ContentsSize(image) > kLargestMemoryImage) {
        return memFullErr;
    }
    OSErr err;
    image->memory = TempNewHandle(ContentsSize(image), &err);
    if (err == noErr) {
        HLock(image->memory);
        image->contents = *image->memory;
    }
    return err;
}

void ReleaseMemory(NamedImage *image) {
    if (image->memory != nullptr) {
        HUnlock(image->memory);
        DisposeHandle(image->memory);
        image->memory = nullptr;
        image->contents = nullptr;
    }
}

OSErr OpenBackingFile(Folder folder, ConstStringPtr name, NamedImage *image) {
    OSErr err = HCreate(folder.vRefNum, folder.dirID, name, kCreator, kFileType);
    if (err != noErr) {
        return err;
    }
    err = HOpen(folder.vRefNum, folder.dirID, name, fsRdWrPerm, &image->fileRef);
    if (err != noErr) {
        HDelete(folder.vRefNum, folder.dirID, name);
        image->fileRef = kNoFile;
    }
    return err;
}

// Space in one piece, so that row seeks stay cheap. Where it cannot be had, clearing tells.
OSErr FillBackingFile(Folder folder, NamedImage *image) {
    WriteHeader(image);
    int64_t size = ContentsSize(image);
    AllocContig(image->fileRef, &size);
    if (_ClearFile(image) == noErr) {
        return noErr;
    }
    FSClose(image->fileRef);
    image->fileRef = kNoFile;
    // Always this name, whichever image is being made.
    HDelete(folder.vRefNum, folder.dirID, kBackingStoreName);
    return dskFulErr;
}

OSErr DeleteBackingFile(ConstStringPtr name) {
    const Folder folder = PreferencesFolder();
    const int lock = LockFolder(folder.vRefNum, folder.dirID);
    const OSErr err = HDelete(folder.vRefNum, folder.dirID, name);
    UnlockFolder(lock);
    return err;
}

// Where a run of bytes lies, or nothing when there is nothing to copy.
struct Span {
    int64_t offset;
    int64_t count;
};

Span FindSpan(const NamedImage *image, int32_t x, int32_t y, int32_t count) {
    if (image == nullptr || x < 0 || x >= RowBytes(image) || y < 0 || y >= image->data.height) {
        return {0, 0};
    }
    return {RowOffset(image, y) + x, std::clamp<int64_t>(count, 0, RowBytes(image) - x)};
}

}  // namespace

OSErr MakeNamedImage(ConstStringPtr name, Boolean keep, int16_t width, int16_t height, int16_t bytesPerPixel,
                     NamedImage **image) {
    *image = reinterpret_cast<NamedImage *>(NewPtrClear(sizeof(NamedImage)));
    NamedImage *made = *image;
    if (made == nullptr) {
        return memFullErr;
    }
    made->fileRef = kNoFile;
    made->keep = keep;
    made->data = {std::max<int16_t>(bytesPerPixel, 0), std::max<int16_t>(width, 0),
                  std::max<int16_t>(height, 0)};
    DuplicatePString(name, made->name);

    const Folder folder = PreferencesFolder();
    // Another process may be making an image of this name in the same folder.
    const int lock = LockFolder(folder.vRefNum, folder.dirID);
    HDelete(folder.vRefNum, folder.dirID, name);
    made->onDisk = TakeMemory(made) != noErr || keep != 0;
    const OSErr err = made->onDisk ? OpenBackingFile(folder, name, made) : noErr;
    UnlockFolder(lock);

    if (err != noErr) {
        return err;
    }
    if (!made->onDisk) {
        _ClearFile(made);
        return noErr;
    }
    return FillBackingFile(folder, made);
}

OSErr TossNamedImage(ConstStringPtr name, NamedImage *image) {
    if (image == nullptr) {
        return DeleteBackingFile(name);
    }
    ReleaseMemory(image);
    if (image->onDisk) {
        if (image->fileRef != kNoFile) {
            FSClose(image->fileRef);
        }
        DeleteBackingFile(name);
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
    Span span = FindSpan(image, x, y, count);
    if (span.count == 0) {
        return noErr;
    }
    if (image->memory != nullptr) {
        BlockMoveData(image->contents + span.offset, buffer, span.count);
        return noErr;
    }
    const OSErr err = SetFPos(image->fileRef, fsFromStart, span.offset);
    return err != noErr ? err : FSRead(image->fileRef, &span.count, buffer);
}

void GetImageData(const NamedImage *image, ImageData *data) {
    *data = image == nullptr ? ImageData{} : image->data;
}
