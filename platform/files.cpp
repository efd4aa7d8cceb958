// Owns the table of open files. A file's mark is its descriptor's own position.
#include "platform/files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "platform/faults/fault_queries.h"
#include "platform/internal/open_files.h"
#include "platform/internal/volume.h"
#include "platform/posix_paths.h"

namespace {

// Never 0, which callers take for no file; with the table's limit every reference fits 16 bits.
constexpr int16_t kFirstReference = 256;
constexpr size_t kMaxOpenFiles = 4096;

std::vector<int> openFiles;  // descriptors; reference kFirstReference + i is entry i

OSErr LastError() {
    return volume::ErrorFromErrno(errno);
}

OSErr AddReference(int descriptor, int16_t *refNum) {
    size_t index = 0;
    while (index < openFiles.size() && openFiles[index] != kClosed) {
        ++index;
    }
    if (index == kMaxOpenFiles) {
        close(descriptor);
        return tmfoErr;
    }
    if (index == openFiles.size()) {
        openFiles.push_back(kClosed);
    }
    openFiles[index] = descriptor;
    *refNum = static_cast<int16_t>(kFirstReference + static_cast<int16_t>(index));
    return noErr;
}

void PutBigEndian(OSType code, uint8_t *bytes) {
    for (int i = 0; i < 4; ++i) {
        bytes[i] = static_cast<uint8_t>(code >> (24 - 8 * i));
    }
}

// The Finder's 32 bytes: type, creator, then fields that are unused here. Not every file system accepts the
// attribute.
void SetTypeAndCreator(int descriptor, OSType fileType, OSType creator) {
    uint8_t finderInfo[32] = {};
    PutBigEndian(fileType, finderInfo);
    PutBigEndian(creator, finderInfo + 4);
    (void)fsetxattr(descriptor, "user.com.apple.FinderInfo", finderInfo, sizeof finderInfo, 0);
}

// ENOENT means a missing file only if its folder exists.
OSErr ErrorForItem(int error, int16_t vRefNum, int32_t dirID) {
    std::string folder;
    struct stat info;
    if (error == ENOENT && volume::DirectoryPath(vRefNum, dirID, &folder) == noErr &&
        stat(folder.c_str(), &info) != 0) {
        return dirNFErr;
    }
    return volume::ErrorFromErrno(error);
}

}  // namespace

int DescriptorOf(int16_t refNum) {
    const auto index = static_cast<size_t>(refNum - kFirstReference);
    return refNum >= kFirstReference && index < openFiles.size() ? openFiles[index] : kClosed;
}

OSErr FindFolder(int16_t vRefNum, OSType folderType, Boolean, int16_t *foundVRefNum, int32_t *foundDirID) {
    *foundVRefNum = 0;
    *foundDirID = 0;
    if (const OSErr injected = faults::FileCallError(); injected != noErr) {
        return injected;
    }
    if (vRefNum != kOnSystemDisk && vRefNum != volume::kStartup) {
        return nsvErr;
    }
    if (folderType != kPreferencesFolderType) {
        return fnfErr;
    }
    const OSErr err = volume::DirectoryID(volume::kStartup, PreferencesPath(), foundDirID);
    if (err == noErr) {
        *foundVRefNum = volume::kStartup;
    }
    return err;
}

OSErr FSMakeFSSpec(int16_t vRefNum, int32_t dirID, ConstStringPtr path, FSSpec *spec) {
    *spec = {};
    if (const OSErr injected = faults::FileCallError(); injected != noErr) {
        return injected;
    }
    if (vRefNum != 0 || dirID != 0) {
        return paramErr;
    }
    return volume::ResolvePath({reinterpret_cast<const char *>(path + 1), path[0]}, spec);
}

OSErr FSpCreate(const FSSpec *spec, OSType creator, OSType fileType, int16_t) {
    return HCreate(spec->vRefNum, spec->parID, spec->name, creator, fileType);
}

OSErr FSpDirCreate(const FSSpec *spec, int16_t, int32_t *createdDirID) {
    if (const OSErr injected = faults::FileCallError(); injected != noErr) {
        return injected;
    }
    std::string path;
    const OSErr err = volume::ItemPath(spec->vRefNum, spec->parID, spec->name, &path);
    if (err != noErr) {
        return err;
    }
    if (mkdir(path.c_str(), 0777) != 0) {
        return ErrorForItem(errno, spec->vRefNum, spec->parID);
    }
    return volume::DirectoryID(spec->vRefNum, path, createdDirID);
}

OSErr FSpOpenDF(const FSSpec *spec, int8_t permission, int16_t *refNum) {
    return HOpen(spec->vRefNum, spec->parID, spec->name, permission, refNum);
}

OSErr FSpDelete(const FSSpec *spec) {
    return HDelete(spec->vRefNum, spec->parID, spec->name);
}

OSErr PBGetCatInfoSync(CInfoPBRec *block) {
    if (const OSErr injected = faults::FileCallError(); injected != noErr) {
        return injected;
    }
    DirInfo &info = block->dirInfo;
    if (info.ioFDirIndex != -1) {
        return paramErr;
    }
    return volume::CatalogueEntry(info.ioVRefNum, info.ioDrDirID, info.ioNamePtr, &info.ioDrParID);
}

OSErr HCreate(int16_t vRefNum, int32_t dirID, ConstStringPtr name, OSType creator, OSType fileType) {
    if (const OSErr injected = faults::FileCallError(); injected != noErr) {
        return injected;
    }
    std::string path;
    if (const OSErr err = volume::ItemPath(vRefNum, dirID, name, &path); err != noErr) {
        return err;
    }
    const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        return ErrorForItem(errno, vRefNum, dirID);
    }
    SetTypeAndCreator(descriptor, fileType, creator);
    close(descriptor);
    return noErr;
}

OSErr HOpen(int16_t vRefNum, int32_t dirID, ConstStringPtr name, int8_t permission, int16_t *refNum) {
    if (const OSErr injected = faults::FileCallError(); injected != noErr) {
        return injected;
    }
    static constexpr int kAccess[] = {O_RDWR, O_RDONLY, O_WRONLY, O_RDWR};
    if (permission < fsCurPerm || permission > fsRdWrPerm) {
        return paramErr;
    }
    std::string path;
    if (const OSErr err = volume::ItemPath(vRefNum, dirID, name, &path); err != noErr) {
        return err;
    }
    constexpr int kFlags = O_CLOEXEC | O_NOFOLLOW;
    int descriptor = open(path.c_str(), kAccess[permission] | kFlags);
    if (descriptor < 0 && permission == fsCurPerm && (errno == EACCES || errno == EROFS)) {
        descriptor = open(path.c_str(), O_RDONLY | kFlags);
    }
    if (descriptor < 0) {
        return ErrorForItem(errno, vRefNum, dirID);
    }
    return AddReference(descriptor, refNum);
}

OSErr HOpenDF(int16_t vRefNum, int32_t dirID, ConstStringPtr name, int8_t permission, int16_t *refNum) {
    return HOpen(vRefNum, dirID, name, permission, refNum);
}

OSErr HDelete(int16_t vRefNum, int32_t dirID, ConstStringPtr name) {
    if (const OSErr injected = faults::FileCallError(); injected != noErr) {
        return injected;
    }
    std::string path;
    if (const OSErr err = volume::ItemPath(vRefNum, dirID, name, &path); err != noErr) {
        return err;
    }
    return unlink(path.c_str()) == 0 ? noErr : ErrorForItem(errno, vRefNum, dirID);
}

OSErr FSRead(int16_t refNum, int64_t *count, void *buffer) {
    const int64_t wanted = *count;
    *count = 0;
    if (const OSErr injected = faults::FileCallError(); injected != noErr) {
        return injected;
    }
    if (wanted < 0) {
        return paramErr;
    }
    while (*count < wanted) {
        const ssize_t got = read(DescriptorOf(refNum), static_cast<char *>(buffer) + *count,
                                 static_cast<size_t>(wanted - *count));
        if (got < 0 && errno != EINTR) {
            return LastError();
        }
        if (got == 0) {
            return eofErr;
        }
        *count += got > 0 ? got : 0;
    }
    return DescriptorOf(refNum) == kClosed ? rfNumErr : noErr;
}

OSErr FSWrite(int16_t refNum, int64_t *count, const void *buffer) {
    const int64_t wanted = *count;
    *count = 0;
    if (const OSErr injected = faults::FileCallError(); injected != noErr) {
        return injected;
    }
    if (wanted < 0) {
        return paramErr;
    }
    const int64_t writable = faults::TakeDiskSpace(wanted);
    while (*count < writable) {
        const ssize_t put = write(DescriptorOf(refNum), static_cast<const char *>(buffer) + *count,
                                  static_cast<size_t>(writable - *count));
        if (put < 0 && errno != EINTR) {
            return LastError();
        }
        *count += put > 0 ? put : 0;
    }
    if (writable < wanted) {
        return dskFulErr;
    }
    return DescriptorOf(refNum) == kClosed ? rfNumErr : noErr;
}

OSErr GetEOF(int16_t refNum, int64_t *size) {
    if (const OSErr injected = faults::FileCallError(); injected != noErr) {
        return injected;
    }
    struct stat info;
    if (fstat(DescriptorOf(refNum), &info) != 0) {
        return LastError();
    }
    *size = info.st_size;
    return noErr;
}

OSErr SetFPos(int16_t refNum, int16_t positionMode, int64_t offset) {
    if (const OSErr injected = faults::FileCallError(); injected != noErr) {
        return injected;
    }
    static constexpr int kOrigins[] = {SEEK_CUR, SEEK_SET, SEEK_END, SEEK_CUR};
    const int descriptor = DescriptorOf(refNum);
    struct stat info;
    if (fstat(descriptor, &info) != 0) {
        return LastError();
    }
    if (positionMode < fsAtMark || positionMode > fsFromMark) {
        return paramErr;
    }
    if (positionMode == fsAtMark) {
        offset = 0;
    }
    const off_t position = lseek(descriptor, offset, kOrigins[positionMode]);
    if (position < 0) {
        return errno == EINVAL ? posErr : LastError();
    }
    if (position > info.st_size) {
        lseek(descriptor, 0, SEEK_END);
        return eofErr;
    }
    return noErr;
}

OSErr AllocContig(int16_t refNum, int64_t *count) {
    if (const OSErr injected = faults::FileCallError(); injected != noErr) {
        return injected;
    }
    if (!faults::HasDiskSpace(*count)) {
        *count = 0;
        return dskFulErr;
    }
    if (fallocate(DescriptorOf(refNum), FALLOC_FL_KEEP_SIZE, 0, *count) != 0) {
        *count = 0;
        return LastError();
    }
    return noErr;
}

OSErr FSClose(int16_t refNum) {
    const int descriptor = DescriptorOf(refNum);
    if (descriptor == kClosed) {
        return rfNumErr;
    }
    openFiles[static_cast<size_t>(refNum - kFirstReference)] = kClosed;
    if (close(descriptor) != 0) {
        return LastError();
    }
    return faults::FileCallError();
}

OSErr SpecFromPosixPath(const std::string &path, FSSpec *spec) {
    return volume::ResolvePosixPath(path, spec);
}

OSErr PosixPathFromSpec(const FSSpec &spec, std::string *path) {
    return volume::ItemPath(spec.vRefNum, spec.parID, spec.name, path);
}
