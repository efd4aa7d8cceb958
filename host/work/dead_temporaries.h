// Temporary files beside outputs, and those that runs left which died. A living run holds a lock on each of
// its own.
#pragma once

#include <filesystem>

// What the names of temporary files begin with.
constexpr char kTemporaryPrefix[] = ".hymedian-";

// Locks a temporary file for as long as the descriptor is open. False when another run took it for dead in
// between.
bool LockTemporary(int descriptor);

// Removes the temporary files of dead runs, once per folder and process.
void ClearDeadTemporaries(const std::filesystem::path &folder);
