#include "imagestore/image_storage.h"

#include "platform/files.h"
#include "platform/locks.h"
#include "platform/memory.h"

namespace {

constexpr int64_t kLargestMemoryImage = 0x20000008;  // 512 MiB plus 8; larger images go to disk

int64_t memoryLimit;  // 0 or less: none
int64_t memoryTaken;

}  // namespace

void LimitImageMemory(int64_t bytes) {
    memoryLimit = bytes;
}

int64_t ImageRowBytes(const NamedImage *image) {
    return int64_t{image->data.width} * image->data.bytesPerPixel;
}

int64_t ImageRowOffset(const NamedImage *image, int64_t y) {
    return kImageHeaderSize + y * ImageRowBytes(image);
}

int64_t ImageContentsSize(const NamedImage *image) {
    return ImageRowOffset(image, image->data.height);
}

OSErr TakeImageMemory(NamedImage *image) {
    const int64_t size = ImageContentsSize(image);
    if (size > kLargestMemoryImage || (memoryLimit > 0 && size > memoryLimit - memoryTaken)) {
        return memFullErr;
    }
    OSErr err;
    image->memory = TempNewHandle(size, &err);
    if (err == noErr) {
        memoryTaken += size;
        HLock(image->memory);
        image->contents = *image->memory;
    }
    return err;
}

void ReleaseImageMemory(NamedImage *image) {
    if (image->memory != nullptr) {
        memoryTaken -= ImageContentsSize(image);
        HUnlock(image->memory);
        DisposeHandle(image->memory);
        image->memory = nullptr;
        image->contents = nullptr;
    }
}

OSErr WriteAt(int16_t fileRef, int64_t offset, int64_t count, const void *bytes) {
    const OSErr err = SetFPos(fileRef, fsFromStart, offset);
    return err != noErr ? err : FSWrite(fileRef, &count, bytes);
}

OSErr ReadAt(int16_t fileRef, int64_t offset, int64_t count, void *bytes) {
    const OSErr err = SetFPos(fileRef, fsFromStart, offset);
    return err != noErr ? err : FSRead(fileRef, &count, bytes);
}

OSErr DeleteImageFile(ConstStringPtr name) {
    const Folder folder = PreferencesFolder();
    FolderLock lock;
    OSErr err = LockFolder(folder.vRefNum, folder.dirID, &lock);
    if (err == noErr) {
        err = HDelete(folder.vRefNum, folder.dirID, name);
    }
    UnlockFolder(lock);
    return err;
}
