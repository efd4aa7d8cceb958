// Owns the resources of all open resource files. Each file is read whole and checked once, on opening.
#include "platform/resources.h"

#include <algorithm>
#include <limits>
#include <set>
#include <utility>
#include <vector>

#include "platform/faults/fault_injection.h"
#include "platform/files.h"
#include "platform/internal/dialog_resources.h"
#include "platform/internal/resource_map.h"
#include "platform/memory.h"
#include "platform/native_paths.h"

namespace {

// Holds the resources that tests add; real files count from 1.
constexpr int16_t kTestFile = 0;
// The map's offsets into the data are 24 bits wide.
constexpr int64_t kLargestFile = 16 << 20;

struct Resource {
    int16_t file;
    OSType type;
    int16_t id;
    Handle data;
};

// Those of the most recently opened file come first.
std::vector<Resource> resources;
std::set<int16_t> openFiles;
OSErr lastError = noErr;
// Offered but not opened yet, in one of two ways, and opened.
const std::string *offeredPath;
std::string_view offeredBytes;
int16_t offeredFile = -1;

OSErr ReadWholeFile(const FSSpec *spec, int8_t permission, std::vector<uint8_t> *bytes) {
    int16_t refNum;
    OSErr err = FSpOpenDF(spec, permission, &refNum);
    if (err != noErr) {
        return err;
    }
    int64_t size = 0;
    err = GetEOF(refNum, &size);
    if (err == noErr && size > kLargestFile) {
        err = mapReadErr;
    }
    if (err == noErr) {
        bytes->resize(static_cast<size_t>(size));
        err = FSRead(refNum, &size, bytes->data());
    }
    FSClose(refNum);
    return err;
}

OSErr Add(int16_t file, OSType type, int16_t id, const uint8_t *bytes, size_t size) {
    Handle data = NewHandle(static_cast<int64_t>(size));
    if (data == nullptr) {
        return memFullErr;
    }
    BlockMoveData(bytes, *data, static_cast<int64_t>(size));
    if (!ToNativeByteOrder(type, reinterpret_cast<uint8_t *>(*data), size)) {
        DisposeHandle(data);
        return mapReadErr;
    }
    resources.insert(resources.begin(), {file, type, id, data});
    return noErr;
}

// Takes the lowest number that no open file has.
OSErr TakeNumber(int16_t *file) {
    if (openFiles.size() == std::numeric_limits<int16_t>::max()) {
        return tmfoErr;
    }
    *file = kTestFile + 1;
    for (auto taken = openFiles.begin(); taken != openFiles.end() && *taken == *file; ++taken) {
        ++*file;
    }
    openFiles.insert(*file);
    return noErr;
}

void RemoveFile(int16_t file) {
    openFiles.erase(file);
    std::erase_if(resources, [file](const Resource &resource) {
        if (resource.file == file) {
            DisposeHandle(resource.data);
        }
        return resource.file == file;
    });
}

auto Find(OSType type, int16_t id) {
    return std::find_if(resources.begin(), resources.end(),
                        [=](const Resource &resource) { return resource.type == type && resource.id == id; });
}

// Reads the resources out of the bytes of a file; -1 if that fails, and `lastError` is set.
int16_t OpenBytes(const std::vector<uint8_t> &bytes) {
    std::vector<ResourceEntry> entries;
    int16_t file = kTestFile;
    lastError = ParseResourceFile(bytes, &entries) ? TakeNumber(&file) : mapReadErr;
    if (lastError != noErr) {
        return -1;
    }
    for (auto entry = entries.begin(); lastError == noErr && entry != entries.end(); ++entry) {
        lastError = Add(file, entry->type, entry->id, entry->data, entry->size);
    }
    if (lastError != noErr) {
        RemoveFile(file);
        return -1;
    }
    return file;
}

// Tried once, whatever comes of it.
void OpenOffered() {
    const std::string *path = std::exchange(offeredPath, nullptr);
    const std::string_view bytes = std::exchange(offeredBytes, {});
    FSSpec spec;
    if (path != nullptr && SpecFromNativePath(*path, &spec) == noErr) {
        offeredFile = FSpOpenResFile(&spec, fsRdPerm);
    } else if (!bytes.empty()) {
        offeredFile = OpenBytes({bytes.begin(), bytes.end()});
    }
}

}  // namespace

int16_t FSpOpenResFile(const FSSpec *spec, int8_t permission) {
    std::vector<uint8_t> bytes;
    lastError = ReadWholeFile(spec, permission, &bytes);
    return lastError == noErr ? OpenBytes(bytes) : int16_t{-1};
}

void CloseResFile(int16_t refNum) {
    RemoveFile(refNum);
    lastError = noErr;
}

Handle GetResource(OSType type, int16_t id) {
    auto found = Find(type, id);
    if (found == resources.end() && (offeredPath != nullptr || !offeredBytes.empty())) {
        OpenOffered();
        found = Find(type, id);
    }
    lastError = found == resources.end() ? resNotFound : noErr;
    return found == resources.end() ? nullptr : found->data;
}

void HNoPurge(Handle) {}

void ReleaseResource(Handle) {}

OSErr ResError() {
    return lastError;
}

void OfferResourceFile(const std::string *path) {
    offeredPath = path;
}

void OfferResourceBytes(std::string_view bytes) {
    offeredBytes = bytes;
}

void WithdrawResources() {
    offeredPath = nullptr;
    offeredBytes = {};
    CloseResFile(offeredFile);
    offeredFile = -1;
}

#ifdef HYMEDIAN_FAULT_INJECTION

void faults::AddResource(OSType type, int16_t id, const std::vector<uint8_t> &bytes) {
    Add(kTestFile, type, id, bytes.data(), bytes.size());
}

void faults::RemoveResources() {
    RemoveFile(kTestFile);
}

#endif
