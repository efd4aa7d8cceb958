#include "platform/faults/fault_injection.h"

#include <algorithm>
#include <atomic>

#include "platform/faults/fault_queries.h"

namespace {

std::atomic<int64_t> memoryLimit = -1;
std::atomic<int64_t> requestsUntilFailure = 0;
std::atomic<bool> refuseTemporaryMemory = false;
std::atomic<int64_t> fileCallsUntilFailure = 0;
std::atomic<OSErr> fileCallError = noErr;
std::atomic<int64_t> diskSpace = -1;
std::atomic<bool> struck = false;

void Arm(std::atomic<int64_t> *countdown, int64_t n) {
    *countdown = n;
    struck = false;
}

bool Strikes(std::atomic<int64_t> *countdown) {
    if (*countdown == 0 || --*countdown != 0) {
        return false;
    }
    struck = true;
    return true;
}

}  // namespace

void faults::SetMemoryLimit(int64_t bytes) {
    memoryLimit = bytes;
}

void faults::FailAllocation(int64_t n) {
    Arm(&requestsUntilFailure, n);
}

void faults::RefuseTemporaryMemory(bool refuse) {
    refuseTemporaryMemory = refuse;
}

void faults::FailFileCall(int64_t n, OSErr err) {
    Arm(&fileCallsUntilFailure, n);
    fileCallError = err;
}

bool faults::FaultStruck() {
    return struck;
}

void faults::SetDiskSpace(int64_t bytes) {
    diskSpace = bytes;
}

bool faults::AllocationFails(int64_t size, int64_t bytesInUse) {
    return Strikes(&requestsUntilFailure) || (memoryLimit >= 0 && bytesInUse + size > memoryLimit);
}

bool faults::TemporaryMemoryRefused() {
    return refuseTemporaryMemory;
}

OSErr faults::FileCallError() {
    return Strikes(&fileCallsUntilFailure) ? fileCallError.load() : noErr;
}

bool faults::HasDiskSpace(int64_t bytes) {
    return diskSpace < 0 || bytes <= diskSpace;
}

int64_t faults::TakeDiskSpace(int64_t bytes) {
    if (diskSpace < 0) {
        return bytes;
    }
    const int64_t granted = std::min<int64_t>(bytes, diskSpace);
    diskSpace -= granted;
    return granted;
}
