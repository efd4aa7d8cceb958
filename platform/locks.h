// Advisory locks between processes that share a folder: held while several file calls must not be torn apart.
//
// A lock that another process keeps is waited for, but two seconds at most, and a signal that the process
// handles ends the wait. A lock that was not had is then only tried, without a wait, until it is had again.
// Where the file system has no locks, all go on without.
//
// Both locks give noErr, fBsyErr when another process kept the lock, or userCanceledErr after a signal; then
// nothing is locked, and what the lock is for is left undone.
#pragma once

#include "platform/types.h"

#pragma GCC visibility push(default)

// `lock` goes to UnlockFolder in any case. A folder that cannot be opened is no error here, but is to every
// call on it.
OSErr LockFolder(int16_t vRefNum, int32_t dirID, int *lock);
void UnlockFolder(int lock);

// Until UnlockFile or FSClose. An unknown reference gives rfNumErr.
OSErr LockFile(int16_t refNum);
void UnlockFile(int16_t refNum);

#pragma GCC visibility pop
