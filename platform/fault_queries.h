// What the switches of fault_injection.h say, for the calls that ask. Internal to this folder.
#pragma once

#include <cstdint>

#include "platform/types.h"

namespace faults {

// Asked once per request, while `bytesInUse` are taken.
bool AllocationFails(int64_t size, int64_t bytesInUse);
bool TemporaryMemoryRefused();

// Asked once per call; noErr lets it go on.
OSErr FileCallError();
// How many of the bytes a write may write. They count as written.
int64_t TakeDiskSpace(int64_t bytes);
bool HasDiskSpace(int64_t bytes);

}  // namespace faults
