// Owns the volumes and the table of directory IDs.
#include "platform/internal/volume.h"

#include <algorithm>
#include <map>
#include <vector>

#include "platform/faults/fault_injection.h"
#include "platform/internal/system_files.h"
#include "platform/internal/system_folders.h"

namespace {

// What Str63 holds.
constexpr size_t kMaxNameLength = 63;
// A colon ends a name.
constexpr std::string_view kNotInNames("\0:", 2);
constexpr int32_t kNoDirectory = 0;
// IDs below this are reserved, as on a Mac volume; only the root and its parent use theirs here.
constexpr int32_t kFirstFreeDirectory = 16;

using system_folders::Volume;

// Reference -1 is entry 0, -2 entry 1. Volumes join as paths on them come up.
std::vector<Volume> &Volumes() {
    static std::vector<Volume> volumes = {system_folders::StartupVolume()};
    return volumes;
}

std::map<std::string, int32_t> directoryIDs;  // by the directory's identity
std::map<int32_t, std::string> directoryPaths;

const std::string startupFolder = system_folders::StartupFolder();

int16_t AddVolume(const Volume &volume) {
    std::vector<Volume> &volumes = Volumes();
    const auto known = std::find_if(volumes.begin(), volumes.end(),
                                    [&](const Volume &candidate) { return candidate.name == volume.name; });
    const auto index = known - volumes.begin();
    if (known == volumes.end()) {
        volumes.push_back(volume);
    }
    return static_cast<int16_t>(-1 - index);
}

const Volume *FindVolume(int16_t vRefNum) {
    const auto index = static_cast<size_t>(-vRefNum - 1);
    return vRefNum < 0 && index < Volumes().size() ? &Volumes()[index] : nullptr;
}

bool FindVolumeNamed(std::string_view name, int16_t *vRefNum) {
    const std::vector<Volume> &volumes = Volumes();
    const auto known = std::find_if(volumes.begin(), volumes.end(),
                                    [name](const Volume &candidate) { return candidate.name == name; });
    const std::optional<Volume> found = known != volumes.end() ? *known : system_folders::VolumeNamed(name);
    if (found) {
        *vRefNum = AddVolume(*found);
    }
    return found.has_value();
}

std::string WithoutTrailingSlashes(std::string path) {
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

OSErr CheckName(std::string_view name) {
    const bool sound = !name.empty() && name.size() <= kMaxNameLength && name != "." && name != ".." &&
                       name.find_first_of(kNotInNames) == std::string_view::npos;
    return sound ? noErr : bdNamErr;
}

// A path's last name, and the path without it.
std::string LastName(const std::string &path) {
    return path.substr(path.rfind('/') + 1);
}

std::string ParentOf(const std::string &path) {
    return path.substr(0, path.rfind('/') + 1);
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
    return system_files::Find(Joined(folder, system_folders::SystemName(name)));
}

// Removes the path's next component from its front.
std::string_view TakeComponent(std::string_view *path) {
    const size_t colon = std::min(path->find(':'), path->size());
    const std::string_view component = path->substr(0, colon);
    path->remove_prefix(std::min(colon + 1, path->size()));
    return component;
}

}  // namespace

int16_t volume::ReferenceOf(const std::string &path) {
    return AddVolume(system_folders::VolumeOf(path));
}

OSErr volume::DirectoryID(int16_t vRefNum, const std::string &path, int32_t *dirID) {
    const Volume *on = FindVolume(vRefNum);
    if (on == nullptr) {
        return nsvErr;
    }
    std::string identity;
    if (const OSErr err = system_folders::Identity(path, &identity); err != noErr) {
        return err;
    }
    const std::string plainPath = WithoutTrailingSlashes(path);
    if (plainPath == WithoutTrailingSlashes(on->root)) {
        *dirID = kRoot;
        return noErr;
    }
    const auto nextFree = static_cast<int32_t>(directoryIDs.size()) + kFirstFreeDirectory;
    *dirID = directoryIDs.try_emplace(identity, nextFree).first->second;
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
        *path = Joined(*path, system_folders::SystemName(item));
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
    const std::string macName = system_folders::MacName(LastName(path));
    if (CheckName(macName) != noErr) {
        return bdNamErr;
    }
    StoreName(macName, name);
    return DirectoryID(vRefNum, ParentOf(path), parentID);
}

OSErr volume::ResolvePath(std::string_view path, FSSpec *spec) {
    int16_t vRefNum = ReferenceOf(startupFolder);
    std::string folder = startupFolder;
    if (path.find(':') != std::string_view::npos) {
        const std::string_view name = TakeComponent(&path);
        if (!name.empty()) {
            if (!FindVolumeNamed(name, &vRefNum)) {
                return nsvErr;
            }
            folder = FindVolume(vRefNum)->root;
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
        folder = Joined(folder, system_folders::SystemName(component));
    }
}

OSErr volume::ResolveNativePath(const std::string &path, FSSpec *spec) {
    const std::string whole = system_folders::AbsolutePath(WithoutTrailingSlashes(path));
    return MakeSpec(ReferenceOf(whole), ParentOf(whole), system_folders::MacName(LastName(whole)), spec);
}

#ifdef HYMEDIAN_FAULT_INJECTION

void faults::MountVolume(const std::string &name, const std::string &root) {
    const int16_t mounted = AddVolume({name, root});
    Volumes()[static_cast<size_t>(-mounted - 1)].root = root;
}

#endif
