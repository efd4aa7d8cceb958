#include "imagestore/paths.h"

#include <algorithm>
#include <cstring>

#include "imagestore/strings.h"
#include "platform/owned_block.h"

namespace {

constexpr int32_t kRootDirectory = 2;
constexpr int32_t kMaxLevels = 64;
// A volume, its folders and a name, each followed by a colon or the terminating zero.
constexpr size_t kMaxPathSize = (kMaxLevels + 2) * sizeof(Str63);
constexpr int64_t kReadingBlockSize = 32768;
constexpr char kCarriageReturn = 13;
constexpr char kEllipsis = static_cast<char>(201);

int32_t Length(const char *text) {
    return static_cast<int32_t>(std::strlen(text));
}

// The position of the last colon; 0 if there is none.
int32_t LastColon(const char *path) {
    const char *colon = std::strrchr(path, ':');
    return colon == nullptr ? 0 : static_cast<int32_t>(colon - path);
}

// Copies `length` characters and a zero; a text longer than `size` is cut to size - 1 characters and an
// ellipsis.
void CopyCut(const char *text, int32_t length, char *out, int32_t size) {
    if (length > size) {
        BlockMoveData(text, out, size - 1);
        out[size - 1] = kEllipsis;
        length = size;
    } else {
        BlockMoveData(text, out, length);
    }
    out[length] = 0;
}

int32_t CountCarriageReturns(int16_t refNum) {
    int32_t lines = 0;
    const OwnedBlock<char> block = MakeOwnedBlock<char>(kReadingBlockSize);
    OSErr err = block == nullptr ? memFullErr : noErr;
    while (err == noErr) {
        int64_t count = kReadingBlockSize;
        err = FSRead(refNum, &count, block.get());
        lines += static_cast<int32_t>(std::count(block.get(), block.get() + count, kCarriageReturn));
    }
    return lines;
}

struct Chain {
    Str63 names[kMaxLevels + 1];  // from the folder up to the volume
    int32_t count;
};

OSErr ClimbToRoot(int32_t dirID, int16_t vRefNum, Chain *chain) {
    chain->count = 0;
    for (;;) {
        if (chain->count > kMaxLevels) {
            return fnfErr;
        }
        CInfoPBRec block = {};
        block.dirInfo = {chain->names[chain->count], vRefNum, -1, dirID, 0};
        const OSErr err = PBGetCatInfoSync(&block);
        if (err != noErr) {
            return err;
        }
        ++chain->count;
        if (dirID == kRootDirectory) {
            return noErr;
        }
        dirID = block.dirInfo.ioDrParID;
    }
}

}  // namespace

void CStringToFSSpec(const char *path, FSSpec *spec) {
    if (path == nullptr) {
        *spec = {-1, kRootDirectory, {}};
        return;
    }
    // The length byte holds only the low 8 bits of the length, and only that many characters count.
    Str255 name;
    name[0] = static_cast<uint8_t>(std::strlen(path));
    BlockMoveData(path, name + 1, name[0]);
    FSMakeFSSpec(0, 0, name, spec);
}

OSErr FSOpenPath(const char *path, int16_t *refNum) {
    FSSpec spec;
    CStringToFSSpec(path, &spec);
    return FSpOpenDF(&spec, fsCurPerm, refNum);
}

OSErr FSCreatePath(const char *path, OSType creator, OSType fileType) {
    FSSpec spec;
    CStringToFSSpec(path, &spec);
    return FSpCreate(&spec, creator, fileType, smSystemScript);
}

OSErr FSDeletePath(const char *path) {
    FSSpec spec;
    CStringToFSSpec(path, &spec);
    return FSpDelete(&spec);
}

OSErr FSOpenAndAppendPath(const char *path, int16_t *refNum, int32_t *lineCount) {
    *lineCount = 0;
    FSSpec spec;
    CStringToFSSpec(path, &spec);
    const OSErr err = FSpOpenDF(&spec, fsRdWrPerm, refNum);
    if (err == noErr) {
        *lineCount = CountCarriageReturns(*refNum);
        SetFPos(*refNum, fsFromLEOF, 0);
    }
    return err;
}

void SetDefaultPath(const char *path) {
    FSSpec spec;
    CStringToFSSpec(path, &spec);
}

void FSSpecToCString(const FSSpec *spec, char *path, int32_t size) {
    if (size <= 0) {
        return;
    }
    // Joined first and cut afterwards, so that the cut falls where the room ends and not between folders.
    char whole[kMaxPathSize];
    PathFromDirID(spec->parID, spec->vRefNum, whole, sizeof whole);
    const int32_t folderLength = Length(whole);
    const int32_t nameLength = std::min<int32_t>(spec->name[0], sizeof spec->name - 1);
    BlockMoveData(spec->name + 1, whole + folderLength, nameLength);
    const int32_t length = folderLength + nameLength;
    if (length < size) {
        BlockMoveData(whole, path, length);
        path[length] = 0;
        return;
    }
    const int32_t kept = std::max(size - 2, 0);
    BlockMoveData(whole, path, kept);
    path[kept] = size > 1 ? kEllipsis : 0;
    path[size - 1] = 0;
}

OSErr PathFromDirID(int32_t dirID, int16_t vRefNum, char *path, int32_t size) {
    if (size <= 0) {
        return noErr;
    }
    path[0] = 0;
    Chain chain;
    const OSErr err = ClimbToRoot(dirID, vRefNum, &chain);
    if (err != noErr) {
        return err;
    }
    int32_t length = 0;
    for (int32_t level = chain.count - 1; level >= 0; --level) {
        const uint8_t *name = chain.names[level];
        if (length + name[0] + 1 >= size) {
            break;
        }
        BlockMoveData(name + 1, path + length, name[0]);
        length += name[0];
        path[length++] = ':';
        path[length] = 0;
    }
    return noErr;
}

void FileNameFromPath(const char *path, char *name, int32_t size) {
    if (size <= 0) {
        return;
    }
    if (path == nullptr) {
        name[0] = 0;
        return;
    }
    const char *from = path + LastColon(path);
    CopyCut(from, Length(from), name, size);
}

void StripFileNameOffPath(const char *path, char *folder, int32_t size) {
    if (size <= 0) {
        return;
    }
    if (path == nullptr || path[0] == 0) {
        folder[0] = 0;
        return;
    }
    // Without a colon, only the first character is kept.
    CopyCut(path, LastColon(path) + 1, folder, size);
}
