// An advisory lock between processes that share a folder: held while several file calls must not be torn
// apart.
#pragma once

#include <cstdint>

// Waits for the lock. The result goes to UnlockFolder; it is -1 when the folder cannot be locked, and then
// nothing is.
int LockFolder(int16_t vRefNum, int32_t dirID);
void UnlockFolder(int lock);
