// The Memory Manager: pointer blocks, relocatable blocks behind handles, and temporary memory.
//
// A block has exactly the size asked for. Null is taken everywhere and never touched; every other pointer
// must be one that these calls gave out. Requests of a negative size fail. Whoever makes a block releases it.
#pragma once

#include "platform/types.h"

#pragma GCC visibility push(default)

extern "C" {

Ptr NewPtr(int64_t size);
Ptr NewPtrClear(int64_t size);
void DisposePtr(Ptr block);
int64_t GetPtrSize(Ptr block);

Handle NewHandle(int64_t size);
Handle NewHandleClear(int64_t size);
void DisposeHandle(Handle handle);
int64_t GetHandleSize(Handle handle);
// The contents are kept up to the smaller size; on memFullErr the block stays as it was.
OSErr SetHandleSize(Handle handle, int64_t size);
// Blocks move only in SetHandleSize, so locking is a statement of intent.
void HLock(Handle handle);
void HUnlock(Handle handle);

// Zeroed memory outside the host's heap; `result` receives noErr or memFullErr.
Handle TempNewHandle(int64_t size, OSErr *result);

// Copies also between overlapping blocks.
void BlockMoveData(const void *source, void *destination, int64_t count);

}  // extern "C"

#pragma GCC visibility pop
