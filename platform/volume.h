// The volume: which POSIX directory a directory ID means, and how names are written on either side.
// Internal to this folder.
#pragma once

#include <string>

#include "platform/types.h"

namespace volume {

constexpr int16_t kReference = -1;
constexpr int32_t kRootDirectory = 2;

// The ID of an existing directory given by its POSIX path.
OSErr DirectoryID(const std::string &path, int32_t *dirID);

OSErr DirectoryPath(int16_t vRefNum, int32_t dirID, std::string *path);

// The POSIX path of the item `name` directly in the directory; the item need not exist.
OSErr ItemPath(int16_t vRefNum, int32_t dirID, ConstStringPtr name, std::string *path);

// The File Manager's code for what errno says.
OSErr ErrorFromErrno(int error);

}  // namespace volume
