// The File Manager and the Folder Manager. On POSIX there is one volume, "Macintosh HD", reference -1,
// mounted on "/"; on Windows every drive and every share is one, and -1 is the system's. Directories are
// identified by IDs: 2 is a volume's root, 1 its parent; any other directory gets an ID when it is first used
// and keeps it for the life of the process. Names are in Mac Roman, 1 to 63 bytes long. In POSIX names, ':'
// stands for '/'; in Windows names, what cannot be in them is stood for by the private characters that Macs
// use on shares.
//
// Every call returns noErr or a File Manager error. File references are positive and never 0.
#pragma once

#include "platform/types.h"

enum : int16_t {
    kOnSystemDisk = -32768,
};

enum : int8_t {
    fsCurPerm = 0,  // the most that is allowed
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

// A directory's catalogue entry.
struct DirInfo {
    StringPtr ioNamePtr;  // receives the name, at most 63 characters
    int16_t ioVRefNum;
    int16_t ioFDirIndex;  // must be -1: asks about the directory ioDrDirID itself
    int32_t ioDrDirID;
    int32_t ioDrParID;  // receives the parent
};
union CInfoPBRec {
    DirInfo dirInfo;
};

constexpr OSType kPreferencesFolderType = FourCharCode("pref");

// The Preferences folder is that of PreferencesPath in native_paths.h. A missing folder gives fnfErr,
// whatever `createFolder` says.
OSErr FindFolder(int16_t vRefNum, OSType folderType, Boolean createFolder, int16_t *foundVRefNum,
                 int32_t *foundDirID);

// Makes an FSSpec from a colon path: "Volume:Folder:Name" or, if it starts with a colon or has none, relative
// to the folder the process was started in (vRefNum and dirID must be 0). One colon may follow a folder's
// name. fnfErr means that the FSSpec is valid but names nothing that exists; after any other error every call
// on the FSSpec fails.
OSErr FSMakeFSSpec(int16_t vRefNum, int32_t dirID, ConstStringPtr path, FSSpec *spec);

// Like the calls on volume, directory and name below.
OSErr FSpCreate(const FSSpec *spec, OSType creator, OSType fileType, int16_t scriptTag);
OSErr FSpDirCreate(const FSSpec *spec, int16_t scriptTag, int32_t *createdDirID);
OSErr FSpOpenDF(const FSSpec *spec, int8_t permission, int16_t *refNum);
OSErr FSpDelete(const FSSpec *spec);

OSErr PBGetCatInfoSync(CInfoPBRec *block);

// Creates an empty file that only its owner may read; if the file exists, returns dupFNErr. Type and creator
// are stored in an extended attribute where the file system supports them; on Windows they are not.
OSErr HCreate(int16_t vRefNum, int32_t dirID, ConstStringPtr name, OSType creator, OSType fileType);
// Opens the data fork. Symbolic links are not followed.
OSErr HOpen(int16_t vRefNum, int32_t dirID, ConstStringPtr name, int8_t permission, int16_t *refNum);
OSErr HOpenDF(int16_t vRefNum, int32_t dirID, ConstStringPtr name, int8_t permission, int16_t *refNum);
// Removes the name at once, even while the file is open.
OSErr HDelete(int16_t vRefNum, int32_t dirID, ConstStringPtr name);

// `count`: in, bytes requested; out, bytes transferred. A short read gives eofErr.
OSErr FSRead(int16_t refNum, int64_t *count, void *buffer);
OSErr FSWrite(int16_t refNum, int64_t *count, const void *buffer);
OSErr GetEOF(int16_t refNum, int64_t *size);
// Positions are 64-bit because backing files of images can exceed 2 GiB. A position before the start gives
// posErr; one past the end moves the mark to the end and gives eofErr.
OSErr SetFPos(int16_t refNum, int16_t positionMode, int64_t offset);
// Reserves `count` bytes from the start of the file, contiguously where possible; does not move the end of
// file.
OSErr AllocContig(int16_t refNum, int64_t *count);
OSErr FSClose(int16_t refNum);
