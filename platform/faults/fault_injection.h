// Switches for tests: memory and disk space that run out, files that fail, volumes and resources of their
// own, and the system's version.
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

// The n-th call on a file, name or folder from now on does nothing and gives `err`, once; 0 disarms. Closing
// closes all the same.
void FailFileCall(int64_t n, OSErr err);

// Whether the failure that was armed last has happened.
bool FaultStruck();

// FSWrite writes no more than so many bytes in all, then gives dskFulErr; a negative number lifts the limit.
void SetDiskSpace(int64_t bytes);

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
