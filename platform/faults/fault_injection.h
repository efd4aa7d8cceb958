// Switches for tests: running out of memory and disk space, failing file calls, extra volumes and resources,
// and the system's version.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/types.h"

namespace faults {

// Requests that would push the bytes in use beyond `bytes` fail; a negative number lifts the limit.
void SetMemoryLimit(int64_t bytes);

// The n-th request from now on fails, once; 0 disarms it.
void FailAllocation(int64_t n);

// While set, TempNewHandle fails, which sends images to disk.
void RefuseTemporaryMemory(bool refuse);

// The n-th call on a file, name or folder from now on does nothing and returns `err`, once; 0 disarms it.
// Close calls still close the file.
void FailFileCall(int64_t n, OSErr err);

// Whether the most recently armed failure has happened.
bool FaultStruck();

// FSWrite writes at most this many bytes in all, then returns dskFulErr; a negative number lifts the limit.
void SetDiskSpace(int64_t bytes);

int64_t BytesInUse();
int64_t BlocksInUse();

// Adds a volume on the POSIX directory `root`; if one of that name is already mounted, it moves there.
void MountVolume(const std::string &name, const std::string &root);

// Adds a resource as if an open resource file held it. RemoveResources removes them all.
void AddResource(OSType type, int16_t id, const std::vector<uint8_t> &bytes);
void RemoveResources();

// What Gestalt reports; with a negative number it reports nothing.
void SetSystemVersion(int32_t version);

}  // namespace faults
