// Advisory locks between processes that share a folder: held while several file calls must not be torn apart.
// Each call waits for the lock.
#pragma once

#include <cstdint>

// The result goes to UnlockFolder; it is -1 when the folder cannot be locked, and then nothing is.
int LockFolder(int16_t vRefNum, int32_t dirID);
void UnlockFolder(int lock);

// Until UnlockFile or FSClose.
void LockFile(int16_t refNum);
void UnlockFile(int16_t refNum);
