// Volumes: maps directory IDs to the system's directories, and Mac names and paths to the system's.
#pragma once

#include <string>

#include "platform/types.h"

namespace volume {

constexpr int16_t kStartup = -1;
constexpr int32_t kRootParent = 1;
constexpr int32_t kRoot = 2;

// The volume that a path lies on.
int16_t ReferenceOf(const std::string &path);

// The ID of an existing directory, given its path; kRoot for the root of the volume.
OSErr DirectoryID(int16_t vRefNum, const std::string &path, int32_t *dirID);

OSErr DirectoryPath(int16_t vRefNum, int32_t dirID, std::string *path);

// The path of the item `name` in the directory itself; the item need not exist.
OSErr ItemPath(int16_t vRefNum, int32_t dirID, ConstStringPtr name, std::string *path);

// Name and parent of a directory.
OSErr CatalogueEntry(int16_t vRefNum, int32_t dirID, StringPtr name, int32_t *parentID);

// The FSSpec of a colon path, whether or not its last component exists. The caller zeroes `spec`.
OSErr ResolvePath(std::string_view path, FSSpec *spec);

// The FSSpec of a path as the system has it.
OSErr ResolveNativePath(const std::string &path, FSSpec *spec);

}  // namespace volume
