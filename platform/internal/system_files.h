// Files, as the File Manager needs them of the system. Paths are absolute and in UTF-8, with '/' between
// their parts on every system. Errors are those of the File Manager.
#pragma once

#include <string>

#include "platform/types.h"

namespace system_files {

using File = intptr_t;
constexpr File kClosed = -1;

// noErr if anything has that name, even a link that leads nowhere.
OSErr Find(const std::string &path);
bool IsFolder(const std::string &path);

// Empty, and for its owner alone; dupFNErr if anything has that name. Type and creator are kept where the
// file system has a place for them.
OSErr Create(const std::string &path, OSType fileType, OSType creator);
OSErr MakeFolder(const std::string &path);
// `permission` is one of files.h, and sound. Does not follow a link.
OSErr Open(const std::string &path, int8_t permission, File *file);
// Another file may take the name at once, even if this one is open.
OSErr Delete(const std::string &path);

// Read and Write may transfer less than is asked for; at the end of the file, Read transfers nothing. Both
// move the mark.
OSErr Read(File file, int64_t wanted, void *buffer, int64_t *count);
OSErr Write(File file, int64_t wanted, const void *buffer, int64_t *count);
OSErr Size(File file, int64_t *size);
// Moves the mark, from where `positionMode` of files.h says; posErr if that is before the start.
OSErr Seek(File file, int16_t positionMode, int64_t offset, int64_t *position);
// Without moving the end of the file.
OSErr Reserve(File file, int64_t size);
OSErr Close(File file);

}  // namespace system_files
