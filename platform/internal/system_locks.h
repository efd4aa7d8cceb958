// Locks between processes, as the system has them. A system without them never says that another process
// keeps one.
#pragma once

#include <string>

#include "platform/internal/system_files.h"

namespace system_locks {

// What a folder's lock is held on; kClosed if there is no such folder.
system_files::File OpenFolder(const std::string &path);
// Also unlocks it.
void CloseFolder(system_files::File folder);

// The same for whatever locks the same thing.
std::string IdentityOfFolder(system_files::File folder, const std::string &path);
std::string IdentityOfFile(system_files::File file);

// Take the lock, or return true because another process has it.
bool FolderIsKept(system_files::File folder);
bool FileIsKept(system_files::File file);
void UnlockFile(system_files::File file);

// Waits for a moment; false if a signal came.
bool Pause();

}  // namespace system_locks
