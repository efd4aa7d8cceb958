// Owns the table of open files. A file's mark is the system's own.
#include "platform/files.h"

#include <string>
#include <vector>

#include "platform/faults/fault_queries.h"
#include "platform/internal/open_files.h"
#include "platform/internal/system_files.h"
#include "platform/internal/volume.h"
#include "platform/native_paths.h"

namespace {

using system_files::File;
using system_files::kClosed;

// Never 0, which callers take for no file; with the table's limit every reference fits 16 bits.
constexpr int16_t kFirstReference = 256;
constexpr size_t kMaxOpenFiles = 4096;

std::vector<File> openFiles;  // reference kFirstReference + i is entry i

OSErr AddReference(File file, int16_t *refNum) {
    size_t index = 0;
    while (index < openFiles.size() && openFiles[index] != kClosed) {
        ++index;
    }
    if (index == kMaxOpenFiles) {
        system_files::Close(file);
        return tmfoErr;
    }
    if (index == openFiles.size()) {
        openFiles.push_back(kClosed);
    }
    openFiles[index] = file;
    *refNum = static_cast<int16_t>(kFirstReference + static_cast<int16_t>(index));
    return noErr;
}

// A missing file is one only if its folder exists.
OSErr ErrorForItem(OSErr error, int16_t vRefNum, int32_t dirID) {
    std::string folder;
    if (error == fnfErr && volume::DirectoryPath(vRefNum, dirID, &folder) == noErr &&
        !system_files::IsFolder(folder)) {
        return dirNFErr;
    }
    return error;
}

}  // namespace

File FileOf(int16_t refNum) {
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
    const std::string path = PreferencesPath();
    if (path.empty()) {
        return fnfErr;
    }
    const int16_t reference = volume::ReferenceOf(path);
    const OSErr err = volume::DirectoryID(reference, path, foundDirID);
    if (err == noErr) {
        *foundVRefNum = reference;
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
    OSErr err = volume::ItemPath(spec->vRefNum, spec->parID, spec->name, &path);
    if (err != noErr) {
        return err;
    }
    err = system_files::MakeFolder(path);
    if (err != noErr) {
        return ErrorForItem(err, spec->vRefNum, spec->parID);
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
    return ErrorForItem(system_files::Create(path, fileType, creator), vRefNum, dirID);
}

OSErr HOpen(int16_t vRefNum, int32_t dirID, ConstStringPtr name, int8_t permission, int16_t *refNum) {
    if (const OSErr injected = faults::FileCallError(); injected != noErr) {
        return injected;
    }
    if (permission < fsCurPerm || permission > fsRdWrPerm) {
        return paramErr;
    }
    std::string path;
    if (const OSErr err = volume::ItemPath(vRefNum, dirID, name, &path); err != noErr) {
        return err;
    }
    File file;
    const OSErr err = system_files::Open(path, permission, &file);
    if (err != noErr) {
        return ErrorForItem(err, vRefNum, dirID);
    }
    return AddReference(file, refNum);
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
    return ErrorForItem(system_files::Delete(path), vRefNum, dirID);
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
    const File file = FileOf(refNum);
    OSErr err = file == kClosed ? rfNumErr : noErr;
    while (err == noErr && *count < wanted) {
        int64_t got;
        err = system_files::Read(file, wanted - *count, static_cast<char *>(buffer) + *count, &got);
        *count += got;
        if (err == noErr && got == 0) {
            err = eofErr;
        }
    }
    return err;
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
    const File file = FileOf(refNum);
    OSErr err = file == kClosed ? rfNumErr : noErr;
    while (err == noErr && *count < writable) {
        int64_t put;
        err = system_files::Write(file, writable - *count, static_cast<const char *>(buffer) + *count, &put);
        *count += put;
    }
    return err == noErr && writable < wanted ? dskFulErr : err;
}

OSErr GetEOF(int16_t refNum, int64_t *size) {
    if (const OSErr injected = faults::FileCallError(); injected != noErr) {
        return injected;
    }
    const File file = FileOf(refNum);
    return file == kClosed ? rfNumErr : system_files::Size(file, size);
}

OSErr SetFPos(int16_t refNum, int16_t positionMode, int64_t offset) {
    if (const OSErr injected = faults::FileCallError(); injected != noErr) {
        return injected;
    }
    const File file = FileOf(refNum);
    if (file == kClosed) {
        return rfNumErr;
    }
    if (positionMode < fsAtMark || positionMode > fsFromMark) {
        return paramErr;
    }
    int64_t size = 0;
    int64_t position = 0;
    OSErr err = system_files::Size(file, &size);
    if (err == noErr) {
        err = system_files::Seek(file, positionMode, positionMode == fsAtMark ? 0 : offset, &position);
    }
    if (err == noErr && position > size) {
        system_files::Seek(file, fsFromLEOF, 0, &position);
        return eofErr;
    }
    return err;
}

OSErr AllocContig(int16_t refNum, int64_t *count) {
    if (const OSErr injected = faults::FileCallError(); injected != noErr) {
        return injected;
    }
    const File file = FileOf(refNum);
    OSErr err = !faults::HasDiskSpace(*count) ? dskFulErr : file == kClosed ? rfNumErr : noErr;
    if (err == noErr) {
        err = system_files::Reserve(file, *count);
    }
    if (err != noErr) {
        *count = 0;
    }
    return err;
}

OSErr FSClose(int16_t refNum) {
    const File file = FileOf(refNum);
    if (file == kClosed) {
        return rfNumErr;
    }
    openFiles[static_cast<size_t>(refNum - kFirstReference)] = kClosed;
    const OSErr err = system_files::Close(file);
    return err == noErr ? faults::FileCallError() : err;
}

OSErr SpecFromNativePath(const std::string &path, FSSpec *spec) {
    return volume::ResolveNativePath(path, spec);
}

OSErr NativePathFromSpec(const FSSpec &spec, std::string *path) {
    return volume::ItemPath(spec.vRefNum, spec.parID, spec.name, path);
}
