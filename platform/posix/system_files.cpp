#include "platform/internal/system_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>

#include "platform/files.h"
#include "platform/posix/errors.h"

namespace {

int DescriptorOf(system_files::File file) {
    return static_cast<int>(file);
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

OSErr Transferred(ssize_t result, int64_t *count) {
    *count = result > 0 ? result : 0;
    return result < 0 ? posix_errors::LastError() : noErr;
}

}  // namespace

OSErr system_files::Find(const std::string &path) {
    struct stat info;
    return lstat(path.c_str(), &info) == 0 ? noErr : posix_errors::LastError();
}

bool system_files::IsFolder(const std::string &path) {
    struct stat info;
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

OSErr system_files::Create(const std::string &path, OSType fileType, OSType creator) {
    const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        return posix_errors::LastError();
    }
    SetTypeAndCreator(descriptor, fileType, creator);
    close(descriptor);
    return noErr;
}

OSErr system_files::MakeFolder(const std::string &path) {
    return mkdir(path.c_str(), 0777) == 0 ? noErr : posix_errors::LastError();
}

OSErr system_files::Open(const std::string &path, int8_t permission, File *file) {
    static constexpr int kAccess[] = {O_RDWR, O_RDONLY, O_WRONLY, O_RDWR};
    constexpr int kFlags = O_CLOEXEC | O_NOFOLLOW;
    int descriptor = open(path.c_str(), kAccess[permission] | kFlags);
    if (descriptor < 0 && permission == fsCurPerm && (errno == EACCES || errno == EROFS)) {
        descriptor = open(path.c_str(), O_RDONLY | kFlags);
    }
    *file = descriptor;
    return descriptor < 0 ? posix_errors::LastError() : noErr;
}

OSErr system_files::Delete(const std::string &path) {
    return unlink(path.c_str()) == 0 ? noErr : posix_errors::LastError();
}

OSErr system_files::Read(File file, int64_t wanted, void *buffer, int64_t *count) {
    ssize_t got;
    do {
        got = read(DescriptorOf(file), buffer, static_cast<size_t>(wanted));
    } while (got < 0 && errno == EINTR);
    return Transferred(got, count);
}

OSErr system_files::Write(File file, int64_t wanted, const void *buffer, int64_t *count) {
    ssize_t put;
    do {
        put = write(DescriptorOf(file), buffer, static_cast<size_t>(wanted));
    } while (put < 0 && errno == EINTR);
    return Transferred(put, count);
}

OSErr system_files::Size(File file, int64_t *size) {
    struct stat info;
    if (fstat(DescriptorOf(file), &info) != 0) {
        return posix_errors::LastError();
    }
    *size = info.st_size;
    return noErr;
}

OSErr system_files::Seek(File file, int16_t positionMode, int64_t offset, int64_t *position) {
    static constexpr int kOrigins[] = {SEEK_CUR, SEEK_SET, SEEK_END, SEEK_CUR};
    *position = lseek(DescriptorOf(file), offset, kOrigins[positionMode]);
    if (*position < 0) {
        return errno == EINVAL ? posErr : posix_errors::LastError();
    }
    return noErr;
}

OSErr system_files::Reserve(File file, int64_t size) {
    return fallocate(DescriptorOf(file), FALLOC_FL_KEEP_SIZE, 0, size) == 0 ? noErr
                                                                            : posix_errors::LastError();
}

OSErr system_files::Close(File file) {
    return close(DescriptorOf(file)) == 0 ? noErr : posix_errors::LastError();
}
