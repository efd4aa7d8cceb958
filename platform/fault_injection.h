// Switches for tests: memory that runs out.
#pragma once

#include <cstdint>

namespace faults {

// Requests that would take the bytes in use beyond `bytes` fail; a negative number lifts the limit.
void SetMemoryLimit(int64_t bytes);

// The n-th request from now on fails, once; 0 disarms.
void FailAllocation(int64_t n);

// TempNewHandle fails while set, which sends images to disk.
void RefuseTemporaryMemory(bool refuse);

int64_t BytesInUse();
int64_t BlocksInUse();

}  // namespace faults
