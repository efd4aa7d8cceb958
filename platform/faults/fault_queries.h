// What the switches of fault_injection.h say, for the calls that ask. Nothing ever fails where they are not
// compiled in.
#pragma once

#include <cstdint>

#include "platform/types.h"

namespace faults {

#ifdef HYMEDIAN_FAULT_INJECTION

// Asked once per request, while `bytesInUse` are taken.
bool AllocationFails(int64_t size, int64_t bytesInUse);
bool TemporaryMemoryRefused();

// Asked once per call; noErr lets it go on.
OSErr FileCallError();
// How many of the bytes a write may write. They count as written.
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
