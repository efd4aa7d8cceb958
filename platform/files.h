// The File Manager and the Folder Manager, on POSIX.
// There is one volume, "Macintosh HD", reference -1, on "/". Directories are known by IDs: 2 is a volume's
// root, 1 its parent; others get an ID when they are first met, which then names the same directory for the
// life of the process. Names are in Mac Roman, of 1 to 63 bytes; ':' and '/' change places between a Mac name
// and a POSIX one.
//
// Every call returns noErr or a File Manager error. File references are positive and never 0.
#pragma once

#include "platform/types.h"

#pragma GCC visibility push(default)

enum : int16_t {
    kOnSystemDisk = -32768,
};

enum : int8_t {
    fsCurPerm = 0,  // whatever is allowed
    fsRdPerm = 1,
    fsWrPerm = 2,
    fsRdWrPerm = 3,
};

enum : int16_t {
    fsAtMark = 0,
    fsFromStart = 1,
    fsFromLEOF = 2,
    fsFromMark = 3,
};

constexpr int16_t smSystemScript = -2;

// What the catalogue says of a directory.
struct DirInfo {
    StringPtr ioNamePtr;  // receives the name, at most 63 characters
    int16_t ioVRefNum;
    int16_t ioFDirIndex;  // -1: the directory ioDrDirID itself, the only way to ask
    int32_t ioDrDirID;
    int32_t ioDrParID;  // receives the parent
};
union CInfoPBRec {
    DirInfo dirInfo;
};

constexpr OSType kPreferencesFolderType = FourCharCode("pref");

extern "C" {

// Preferences folder: $HYMEDIAN_PREFERENCES, else $XDG_CONFIG_HOME/hymedian/Preferences, else
// ~/.config/hymedian/Preferences. A folder that does not exist gives fnfErr, whatever `createFolder` says.
OSErr FindFolder(int16_t vRefNum, OSType folderType, Boolean createFolder, int16_t *foundVRefNum,
                 int32_t *foundDirID);

// Makes an FSSpec from a colon path: "Volume:Folder:Name", or, with a leading colon or none at all,
// relative to the folder the process was started in (volume and directory 0 are the only ones taken). One
// colon may follow a folder's name. fnfErr: the FSSpec is sound, but nothing has its name. After any other
// error every call on it fails.
OSErr FSMakeFSSpec(int16_t vRefNum, int32_t dirID, ConstStringPtr path, FSSpec *spec);

// The calls on an FSSpec, like those on volume, directory and name below.
OSErr FSpCreate(const FSSpec *spec, OSType creator, OSType fileType, int16_t scriptTag);
OSErr FSpDirCreate(const FSSpec *spec, int16_t scriptTag, int32_t *createdDirID);
OSErr FSpOpenDF(const FSSpec *spec, int8_t permission, int16_t *refNum);
OSErr FSpDelete(const FSSpec *spec);

OSErr PBGetCatInfoSync(CInfoPBRec *block);

// Creates an empty file that only its owner may read; an existing one gives dupFNErr. Type and creator are
// kept as an extended attribute where the file system has them.
OSErr HCreate(int16_t vRefNum, int32_t dirID, ConstStringPtr name, OSType creator, OSType fileType);
// Opens the data fork. A symbolic link is not followed.
OSErr HOpen(int16_t vRefNum, int32_t dirID, ConstStringPtr name, int8_t permission, int16_t *refNum);
OSErr HOpenDF(int16_t vRefNum, int32_t dirID, ConstStringPtr name, int8_t permission, int16_t *refNum);
// Removes the name at once, also while the file is open somewhere.
OSErr HDelete(int16_t vRefNum, int32_t dirID, ConstStringPtr name);

// `count`: bytes wanted in, bytes moved out. Fewer bytes than wanted give eofErr.
OSErr FSRead(int16_t refNum, int64_t *count, void *buffer);
OSErr FSWrite(int16_t refNum, int64_t *count, const void *buffer);
OSErr GetEOF(int16_t refNum, int64_t *size);
// Positions are 64-bit, since backing files of images exceed 2 GiB. Before the start: posErr. Past the end:
// the mark goes to the end and the result is eofErr.
OSErr SetFPos(int16_t refNum, int16_t positionMode, int64_t offset);
// Reserves `count` bytes from the start of the file, in one piece where possible; the end of file does not
// move.
OSErr AllocContig(int16_t refNum, int64_t *count);
OSErr FSClose(int16_t refNum);

}  // extern "C"

#pragma GCC visibility pop
