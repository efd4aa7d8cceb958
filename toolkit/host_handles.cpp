#include "toolkit/host_handles.h"

#include "platform/memory.h"

namespace {

// The procedure at a position, counted from 1; null if the suite ends before it.
template <typename Proc>
Proc Offered(const HandleProcs *procs, int16_t position, Proc HandleProcs::*proc) {
    return procs != nullptr && procs->numHandleProcs >= position ? procs->*proc : nullptr;
}

}  // namespace

bool HostMakesHandles(const HandleProcs *procs) {
    return Offered(procs, 1, &HandleProcs::newProc) != nullptr &&
           Offered(procs, 2, &HandleProcs::disposeProc) != nullptr;
}

Handle HostNewHandle(const HandleProcs *procs, int32_t size) {
    return HostMakesHandles(procs) ? procs->newProc(size) : NewHandle(size);
}

void HostDisposeNewHandle(const HandleProcs *procs, Handle handle) {
    if (!HostMakesHandles(procs)) {
        DisposeHandle(handle);
    } else if (handle != nullptr) {
        procs->disposeProc(handle);
    }
}

void HostDisposeHandle(const HandleProcs *procs, Handle handle) {
    const auto ofItsOwn = Offered(procs, 2, &HandleProcs::disposeProc);
    const auto regular = Offered(procs, 8, &HandleProcs::disposeRegularHandleProc);
    const auto dispose = regular == nullptr ? ofItsOwn : regular;
    if (handle != nullptr && dispose != nullptr) {
        dispose(handle);
    }
}

int32_t HostHandleSize(const HandleProcs *procs, Handle handle) {
    const auto getSize = Offered(procs, 3, &HandleProcs::getSizeProc);
    return handle == nullptr || getSize == nullptr ? kUnknownSize : getSize(handle);
}

OSErr HostSetHandleSize(const HandleProcs *procs, Handle handle, int32_t size) {
    const auto setSize = Offered(procs, 4, &HandleProcs::setSizeProc);
    return handle == nullptr || setSize == nullptr ? paramErr : setSize(handle, size);
}

Ptr HostLockHandle(const HandleProcs *procs, Handle handle) {
    const auto lock = Offered(procs, 5, &HandleProcs::lockProc);
    return handle == nullptr ? nullptr : lock == nullptr ? *handle : lock(handle, false);
}

void HostUnlockHandle(const HandleProcs *procs, Handle handle) {
    const auto unlock = Offered(procs, 6, &HandleProcs::unlockProc);
    if (handle != nullptr && unlock != nullptr) {
        unlock(handle);
    }
}
