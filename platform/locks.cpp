// Owns the list of locks that could not be obtained.
#include "platform/locks.h"

#include <chrono>
#include <set>
#include <string>

#include "platform/internal/open_files.h"
#include "platform/internal/system_locks.h"
#include "platform/internal/volume.h"

namespace {

using Clock = std::chrono::steady_clock;
using system_files::File;
using system_files::kClosed;

constexpr std::chrono::seconds kLongestWait{2};

std::set<std::string> refused;

OSErr WaitForLock(bool (*isKept)(File), File lockable, Clock::time_point end) {
    while (isKept(lockable)) {
        if (Clock::now() >= end) {
            return fBsyErr;
        }
        if (!system_locks::Pause()) {
            return userCanceledErr;
        }
    }
    return noErr;
}

OSErr Lock(bool (*isKept)(File), File lockable, const std::string &identity) {
    const bool patient = !refused.contains(identity);
    const OSErr err =
        WaitForLock(isKept, lockable, Clock::now() + (patient ? kLongestWait : Clock::duration::zero()));
    if (err == noErr) {
        refused.erase(identity);
    } else {
        refused.insert(identity);
    }
    return err;
}

}  // namespace

OSErr LockFolder(int16_t vRefNum, int32_t dirID, FolderLock *lock) {
    *lock = kClosed;
    std::string path;
    if (volume::DirectoryPath(vRefNum, dirID, &path) != noErr) {
        return noErr;
    }
    const File folder = system_locks::OpenFolder(path);
    if (folder == kClosed) {
        return noErr;
    }
    const OSErr err = Lock(system_locks::FolderIsKept, folder, system_locks::IdentityOfFolder(folder, path));
    if (err != noErr) {
        system_locks::CloseFolder(folder);
        return err;
    }
    *lock = folder;
    return noErr;
}

void UnlockFolder(FolderLock lock) {
    if (lock != kClosed) {
        system_locks::CloseFolder(lock);
    }
}

OSErr LockFile(int16_t refNum) {
    const File file = FileOf(refNum);
    return file == kClosed ? rfNumErr
                           : Lock(system_locks::FileIsKept, file, system_locks::IdentityOfFile(file));
}

void UnlockFile(int16_t refNum) {
    if (const File file = FileOf(refNum); file != kClosed) {
        system_locks::UnlockFile(file);
    }
}
