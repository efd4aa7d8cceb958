#include "host/filter/memory_suites.h"

#include "platform/memory.h"

namespace {

Handle NewRegularHandle(int32_t size) {
    return NewHandle(size);
}

int32_t RegularHandleSize(Handle handle) {
    return static_cast<int32_t>(GetHandleSize(handle));
}

OSErr SetRegularHandleSize(Handle handle, int32_t size) {
    return SetHandleSize(handle, size);
}

Ptr LockHandle(Handle handle, Boolean) {
    HLock(handle);
    return handle == nullptr ? nullptr : *handle;
}

// Memory is the system's; the host holds none that it could give up.
void RecoverSpace(int32_t) {}

// A buffer's ID is its address.
OSErr AllocateBuffer(int32_t size, BufferID *buffer) {
    *buffer = reinterpret_cast<BufferID>(NewPtr(size));
    return *buffer == 0 ? memFullErr : noErr;
}

Ptr LockBuffer(BufferID buffer, Boolean) {
    return reinterpret_cast<Ptr>(buffer);
}

void UnlockBuffer(BufferID) {}

void FreeBuffer(BufferID buffer) {
    DisposePtr(reinterpret_cast<Ptr>(buffer));
}

int32_t BufferSpace() {
    return INT32_MAX;
}

HandleProcs handleProcs = {kHandleProcsVersion, kHandleProcsCount,    NewRegularHandle, DisposeHandle,
                           RegularHandleSize,   SetRegularHandleSize, LockHandle,       HUnlock,
                           RecoverSpace,        DisposeHandle};

BufferProcs bufferProcs = {kBufferProcsVersion, kBufferProcsCount, AllocateBuffer, LockBuffer,
                           UnlockBuffer,        FreeBuffer,        BufferSpace};

}  // namespace

HandleProcs *HostHandleProcs() {
    return &handleProcs;
}

BufferProcs *HostBufferProcs() {
    return &bufferProcs;
}
