// Advisory locks between processes that share a folder, held over file calls that must not be interleaved.
//
// If another process holds the lock, the call waits, but for two seconds at most; a signal that the process
// handles also ends the wait. After a failure the same lock is only tried, without waiting, until it is
// obtained again. On file systems without locks everything proceeds unlocked.
//
// Both locks return noErr, fBsyErr when another process holds the lock, or userCanceledErr after a signal. On
// an error nothing is locked, and the caller skips the work that the lock protects.
#pragma once

#include "platform/types.h"

// Always pass `lock` to UnlockFolder. A folder that cannot be opened is not an error here: every call on it
// fails anyway.
using FolderLock = intptr_t;
OSErr LockFolder(int16_t vRefNum, int32_t dirID, FolderLock *lock);
void UnlockFolder(FolderLock lock);

// Held until UnlockFile or FSClose. An unknown reference gives rfNumErr.
OSErr LockFile(int16_t refNum);
void UnlockFile(int16_t refNum);
