// Switches for tests: memory that runs out, volumes and resources of their own, and the system's version.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/types.h"

namespace faults {

// Requests that would take the bytes in use beyond `bytes` fail; a negative number lifts the limit.
void SetMemoryLimit(int64_t bytes);

// The n-th request from now on fails, once; 0 disarms.
void FailAllocation(int64_t n);

// TempNewHandle fails while set, which sends images to disk.
void RefuseTemporaryMemory(bool refuse);

int64_t BytesInUse();
int64_t BlocksInUse();

// A further volume on the POSIX directory `root`; a mounted one of that name moves there.
void MountVolume(const std::string &name, const std::string &root);

// As if an open resource file held it; removed again with RemoveResources.
void AddResource(OSType type, int16_t id, const std::vector<uint8_t> &bytes);
void RemoveResources();

// What Gestalt tells; with a negative number it tells nothing.
void SetSystemVersion(int32_t version);

}  // namespace faults
