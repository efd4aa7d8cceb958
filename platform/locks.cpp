// Owns the list of locks that could not be obtained.
#include "platform/locks.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <ctime>
#include <set>
#include <string>
#include <utility>

#include "platform/internal/open_files.h"
#include "platform/internal/volume.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kLongestWait{2};
// flock has no timeout, so the lock is polled; a millisecond is short for the user and cheap for the
// processor.
constexpr timespec kBetweenTries = {0, 1'000'000};

std::set<std::pair<dev_t, ino_t>> refused;

bool IsKeptByAnother(int descriptor) {
    return flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

OSErr WaitForLock(int descriptor, Clock::time_point end) {
    while (IsKeptByAnother(descriptor)) {
        if (Clock::now() >= end) {
            return fBsyErr;
        }
        // Only a handled signal interrupts the sleep, even one whose handler restarts system calls.
        if (nanosleep(&kBetweenTries, nullptr) != 0) {
            return userCanceledErr;
        }
    }
    return noErr;
}

OSErr Lock(int descriptor) {
    struct stat info = {};
    fstat(descriptor, &info);
    const std::pair identity(info.st_dev, info.st_ino);
    const bool patient = !refused.contains(identity);
    const OSErr err =
        WaitForLock(descriptor, Clock::now() + (patient ? kLongestWait : Clock::duration::zero()));
    if (err == noErr) {
        refused.erase(identity);
    } else {
        refused.insert(identity);
    }
    return err;
}

}  // namespace

OSErr LockFolder(int16_t vRefNum, int32_t dirID, int *lock) {
    *lock = kClosed;
    std::string path;
    if (volume::DirectoryPath(vRefNum, dirID, &path) != noErr) {
        return noErr;
    }
    const int descriptor = open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor == kClosed) {
        return noErr;
    }
    if (const OSErr err = Lock(descriptor); err != noErr) {
        close(descriptor);
        return err;
    }
    *lock = descriptor;
    return noErr;
}

void UnlockFolder(int lock) {
    if (lock != kClosed) {
        close(lock);
    }
}

OSErr LockFile(int16_t refNum) {
    const int descriptor = DescriptorOf(refNum);
    return descriptor == kClosed ? rfNumErr : Lock(descriptor);
}

void UnlockFile(int16_t refNum) {
    flock(DescriptorOf(refNum), LOCK_UN);
}
