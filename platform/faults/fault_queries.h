// How the switches of fault_injection.h are set, for the calls that check them. Nothing ever fails in builds
// without fault injection.
#pragma once

#include <cstdint>

#include "platform/types.h"

namespace faults {

#ifdef HYMEDIAN_FAULT_INJECTION

// Called once per request, with `bytesInUse` already taken.
bool AllocationFails(int64_t size, int64_t bytesInUse);
bool TemporaryMemoryRefused();

// Called once per call; noErr lets it proceed.
OSErr FileCallError();
// How many of `bytes` a write may write. They count as written.
int64_t TakeDiskSpace(int64_t bytes);
bool HasDiskSpace(int64_t bytes);

#else

constexpr bool AllocationFails(int64_t, int64_t) {
    return false;
}

constexpr bool TemporaryMemoryRefused() {
    return false;
}

constexpr OSErr FileCallError() {
    return noErr;
}

constexpr int64_t TakeDiskSpace(int64_t bytes) {
    return bytes;
}

constexpr bool HasDiskSpace(int64_t) {
    return true;
}

#endif

}  // namespace faults
