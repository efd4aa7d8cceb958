// Volumes: maps directory IDs to POSIX directories, and names and paths between Mac and POSIX form.
#pragma once

#include <string>

#include "platform/types.h"

namespace volume {

constexpr int16_t kStartup = -1;  // "Macintosh HD"
constexpr int32_t kRootParent = 1;
constexpr int32_t kRoot = 2;

// The ID of an existing directory, given its POSIX path; kRoot for the root of the volume.
OSErr DirectoryID(int16_t vRefNum, const std::string &path, int32_t *dirID);

OSErr DirectoryPath(int16_t vRefNum, int32_t dirID, std::string *path);

// The POSIX path of the item `name` in the directory itself; the item need not exist.
OSErr ItemPath(int16_t vRefNum, int32_t dirID, ConstStringPtr name, std::string *path);

// Name and parent of a directory.
OSErr CatalogueEntry(int16_t vRefNum, int32_t dirID, StringPtr name, int32_t *parentID);

// The FSSpec of a colon path, whether or not its last component exists. The caller zeroes `spec`.
OSErr ResolvePath(std::string_view path, FSSpec *spec);

// The FSSpec of a POSIX path on the startup volume.
OSErr ResolvePosixPath(const std::string &path, FSSpec *spec);

// The File Manager's error code for an errno value.
OSErr ErrorFromErrno(int error);

}  // namespace volume
