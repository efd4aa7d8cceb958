#include "platform/volume.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <map>
#include <utility>

#include "platform/mac_roman.h"

namespace {

constexpr size_t kMaxNameLength = 63;
constexpr int32_t kFirstFreeDirectory = 16;

using FileIdentity = std::pair<dev_t, ino_t>;

std::map<FileIdentity, int32_t> directoryIDs;
std::map<int32_t, std::string> directoryPaths;

std::string WithoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

void SwapSeparators(std::string *name) {
    for (char &c : *name) {
        c = c == '/' ? ':' : c == ':' ? '/' : c;
    }
}

}  // namespace

OSErr volume::DirectoryID(const std::string &path, int32_t *dirID) {
    struct stat info;
    if (stat(path.c_str(), &info) != 0) {
        return ErrorFromErrno(errno);
    }
    if (!S_ISDIR(info.st_mode)) {
        return dirNFErr;
    }
    if (WithoutTrailingSlashes(path) == "/") {
        *dirID = kRootDirectory;
        return noErr;
    }
    const auto nextFree = static_cast<int32_t>(directoryIDs.size()) + kFirstFreeDirectory;
    *dirID = directoryIDs.try_emplace({info.st_dev, info.st_ino}, nextFree).first->second;
    // A directory that was renamed since goes by its latest path.
    directoryPaths[*dirID] = WithoutTrailingSlashes(path);
    return noErr;
}

OSErr volume::DirectoryPath(int16_t vRefNum, int32_t dirID, std::string *path) {
    if (vRefNum != kReference) {
        return nsvErr;
    }
    if (dirID == kRootDirectory) {
        *path = "/";
        return noErr;
    }
    const auto found = directoryPaths.find(dirID);
    if (found == directoryPaths.end()) {
        return dirNFErr;
    }
    *path = found->second;
    return noErr;
}

OSErr volume::ItemPath(int16_t vRefNum, int32_t dirID, ConstStringPtr name, std::string *path) {
    OSErr err = DirectoryPath(vRefNum, dirID, path);
    if (err != noErr) {
        return err;
    }
    std::string item(reinterpret_cast<const char *>(name + 1), name[0]);
    if (item.empty() || item.size() > kMaxNameLength || item.find('\0') != std::string::npos) {
        return bdNamErr;
    }
    SwapSeparators(&item);
    if (item == "." || item == "..") {
        return bdNamErr;
    }
    if (path->back() != '/') {
        *path += '/';
    }
    *path += MacRomanToUTF8(item);
    return noErr;
}

OSErr volume::ErrorFromErrno(int error) {
    static constexpr std::pair<int, OSErr> kCodes[] = {
        {ENOENT, fnfErr},  {ENOTDIR, dirNFErr},   {EEXIST, dupFNErr},       {EACCES, permErr},
        {EPERM, permErr},  {EROFS, wPrErr},       {ENOSPC, dskFulErr},      {EDQUOT, dskFulErr},
        {EMFILE, tmfoErr}, {EISDIR, notAFileErr}, {ENAMETOOLONG, bdNamErr}, {EBADF, rfNumErr},
    };
    const auto *code = std::find_if(std::begin(kCodes), std::end(kCodes),
                                    [error](const auto &entry) { return entry.first == error; });
    return code == std::end(kCodes) ? ioErr : code->second;
}
