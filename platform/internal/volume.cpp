// Owns the volumes and the table of directory IDs.
#include "platform/internal/volume.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <map>
#include <utility>
#include <vector>

#include "platform/faults/fault_injection.h"
#include "platform/mac_roman.h"

namespace {

// What Str63 holds.
constexpr size_t kMaxNameLength = 63;
// A colon would become POSIX's separator.
constexpr std::string_view kNotInNames("\0:", 2);
constexpr int32_t kNoDirectory = 0;
// IDs below this are reserved, as on a Mac volume; only the root and its parent use theirs here.
constexpr int32_t kFirstFreeDirectory = 16;

struct Volume {
    std::string name;
    std::string root;  // POSIX path
};

using FileIdentity = std::pair<dev_t, ino_t>;

// Reference -1 is entry 0, -2 entry 1.
std::vector<Volume> volumes = {{"Macintosh HD", "/"}};
std::map<FileIdentity, int32_t> directoryIDs;
std::map<int32_t, std::string> directoryPaths;

// The folder the process was started in may no longer exist.
std::string StartupFolder() {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::current_path(error);
    return error ? "/" : folder.string();
}

const std::string startupFolder = StartupFolder();

const Volume *FindVolume(int16_t vRefNum) {
    const auto index = static_cast<size_t>(-vRefNum - 1);
    return vRefNum < 0 && index < volumes.size() ? &volumes[index] : nullptr;
}

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

OSErr CheckName(std::string_view name) {
    const bool sound = !name.empty() && name.size() <= kMaxNameLength && name != "." && name != ".." &&
                       name.find_first_of(kNotInNames) == std::string_view::npos;
    return sound ? noErr : bdNamErr;
}

std::string PosixName(std::string_view name) {
    std::string swapped(name);
    SwapSeparators(&swapped);
    return MacRomanToUTF8(swapped);
}

std::string MacName(std::string_view posixName) {
    std::string name = UTF8ToMacRoman(posixName);
    SwapSeparators(&name);
    return name;
}

void StoreName(std::string_view name, StringPtr stored) {
    stored[0] = static_cast<uint8_t>(name.size());
    std::copy(name.begin(), name.end(), stored + 1);
}

std::string Joined(const std::string &folder, const std::string &name) {
    return folder.back() == '/' ? folder + name : folder + '/' + name;
}

// A path that cannot be resolved yields an FSSpec on which every call fails with the same error: it has an
// empty name, or no folder.
OSErr MakeSpec(int16_t vRefNum, const std::string &folder, std::string_view name, FSSpec *spec) {
    *spec = {vRefNum, volume::kRoot, {}};
    if (const OSErr err = CheckName(name); err != noErr) {
        return err;
    }
    StoreName(name, spec->name);
    if (const OSErr err = volume::DirectoryID(vRefNum, folder, &spec->parID); err != noErr) {
        spec->parID = kNoDirectory;
        return err == fnfErr ? dirNFErr : err;
    }
    struct stat info;
    return lstat(Joined(folder, PosixName(name)).c_str(), &info) == 0 ? noErr : volume::ErrorFromErrno(errno);
}

// Removes the path's next component from its front.
std::string_view TakeComponent(std::string_view *path) {
    const size_t colon = std::min(path->find(':'), path->size());
    const std::string_view component = path->substr(0, colon);
    path->remove_prefix(std::min(colon + 1, path->size()));
    return component;
}

}  // namespace

OSErr volume::DirectoryID(int16_t vRefNum, const std::string &path, int32_t *dirID) {
    const Volume *on = FindVolume(vRefNum);
    if (on == nullptr) {
        return nsvErr;
    }
    struct stat info;
    if (stat(path.c_str(), &info) != 0) {
        return ErrorFromErrno(errno);
    }
    if (!S_ISDIR(info.st_mode)) {
        return dirNFErr;
    }
    const std::string plainPath = WithoutTrailingSlashes(path);
    if (plainPath == on->root) {
        *dirID = kRoot;
        return noErr;
    }
    const auto nextFree = static_cast<int32_t>(directoryIDs.size()) + kFirstFreeDirectory;
    *dirID = directoryIDs.try_emplace({info.st_dev, info.st_ino}, nextFree).first->second;
    // A renamed directory goes by its latest path.
    directoryPaths[*dirID] = plainPath;
    return noErr;
}

OSErr volume::DirectoryPath(int16_t vRefNum, int32_t dirID, std::string *path) {
    const Volume *on = FindVolume(vRefNum);
    if (on == nullptr) {
        return nsvErr;
    }
    if (dirID == kRoot) {
        *path = on->root;
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
    const std::string_view item(reinterpret_cast<const char *>(name + 1), name[0]);
    if (err == noErr) {
        err = CheckName(item);
    }
    if (err == noErr) {
        *path = Joined(*path, PosixName(item));
    }
    return err;
}

OSErr volume::CatalogueEntry(int16_t vRefNum, int32_t dirID, StringPtr name, int32_t *parentID) {
    std::string path;
    const OSErr err = DirectoryPath(vRefNum, dirID, &path);
    if (err != noErr) {
        return err;
    }
    if (dirID == kRoot) {
        StoreName(FindVolume(vRefNum)->name, name);
        *parentID = kRootParent;
        return noErr;
    }
    const std::filesystem::path posixPath = path;
    const std::string macName = MacName(posixPath.filename().string());
    if (CheckName(macName) != noErr) {
        return bdNamErr;
    }
    StoreName(macName, name);
    return DirectoryID(vRefNum, posixPath.parent_path(), parentID);
}

OSErr volume::ResolvePath(std::string_view path, FSSpec *spec) {
    int16_t vRefNum = kStartup;
    std::string folder = startupFolder;
    if (path.find(':') != std::string_view::npos) {
        const std::string_view name = TakeComponent(&path);
        if (!name.empty()) {
            const auto on = std::find_if(volumes.begin(), volumes.end(),
                                         [name](const Volume &candidate) { return candidate.name == name; });
            if (on == volumes.end()) {
                return nsvErr;
            }
            vRefNum = static_cast<int16_t>(-1 - (on - volumes.begin()));
            folder = on->root;
            if (path.empty()) {
                spec->vRefNum = vRefNum;
                spec->parID = kRootParent;
                StoreName(name, spec->name);
                return noErr;
            }
        }
    }
    for (;;) {
        const std::string_view component = TakeComponent(&path);
        if (path.empty()) {
            return MakeSpec(vRefNum, folder, component, spec);
        }
        if (CheckName(component) != noErr) {
            return MakeSpec(vRefNum, folder, {}, spec);
        }
        folder = Joined(folder, PosixName(component));
    }
}

OSErr volume::ResolvePosixPath(const std::string &path, FSSpec *spec) {
    std::error_code ignored;
    const std::filesystem::path whole = std::filesystem::absolute(WithoutTrailingSlashes(path), ignored);
    return MakeSpec(kStartup, whole.parent_path(), MacName(whole.filename().string()), spec);
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

#ifdef HYMEDIAN_FAULT_INJECTION

void faults::MountVolume(const std::string &name, const std::string &root) {
    const auto mounted = std::find_if(volumes.begin(), volumes.end(),
                                      [&](const Volume &candidate) { return candidate.name == name; });
    if (mounted == volumes.end()) {
        volumes.push_back({name, root});
    } else {
        mounted->root = root;
    }
}

#endif
