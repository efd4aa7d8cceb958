// The Memory Manager: pointer blocks, relocatable blocks behind handles, and temporary memory.
//
// A block has exactly the requested size. Null is accepted everywhere and never dereferenced; any other
// pointer must come from these calls. Requests of a negative size fail. Whoever allocates a block releases
// it.
#pragma once

#include "platform/types.h"

Ptr NewPtr(int64_t size);
Ptr NewPtrClear(int64_t size);
void DisposePtr(Ptr block);
int64_t GetPtrSize(Ptr block);

Handle NewHandle(int64_t size);
Handle NewHandleClear(int64_t size);
void DisposeHandle(Handle handle);
int64_t GetHandleSize(Handle handle);
// The contents are kept up to the smaller size; on memFullErr the block is unchanged.
OSErr SetHandleSize(Handle handle, int64_t size);
// Blocks move only in SetHandleSize, so locking merely states intent.
void HLock(Handle handle);
void HUnlock(Handle handle);

// Zeroed memory outside the host's heap; `result` receives noErr or memFullErr.
Handle TempNewHandle(int64_t size, OSErr *result);

// The blocks may overlap.
void BlockMoveData(const void *source, void *destination, int64_t count);
