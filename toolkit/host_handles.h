// Handles that the host keeps, measures or frees. They are not of the Memory Manager here, so they are only
// touched through the host's handle suite, as far as its count of procedures goes; older hosts have the first
// six, others none. Suites and handles may be null.
#pragma once

#include "photoshop/suites.h"
#include "platform/types.h"

constexpr int32_t kUnknownSize = -1;

// Whether the host can make handles and dispose of them; otherwise HostNewHandle takes those of the Memory
// Manager.
bool HostMakesHandles(const HandleProcs *procs);
// Null when memory is short.
Handle HostNewHandle(const HandleProcs *procs, int32_t size);
// Disposes of a handle that HostNewHandle made.
void HostDisposeNewHandle(const HandleProcs *procs, Handle handle);
// Disposes of a handle that the host made; leaves it alone if the suite has no procedure for that.
void HostDisposeHandle(const HandleProcs *procs, Handle handle);
int32_t HostHandleSize(const HandleProcs *procs, Handle handle);
OSErr HostSetHandleSize(const HandleProcs *procs, Handle handle, int32_t size);
// The contents, until HostUnlockHandle; null if there are none.
Ptr HostLockHandle(const HandleProcs *procs, Handle handle);
void HostUnlockHandle(const HandleProcs *procs, Handle handle);
