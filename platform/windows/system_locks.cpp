// A folder's lock is a mutex with a name made of its path, since folders cannot be locked; a file's is a lock
// on a byte far behind its end, where it keeps nobody from reading.
#include "platform/internal/system_locks.h"

#include "platform/internal/system_folders.h"
#include "platform/windows/handles.h"
#include "platform/windows/texts.h"

namespace {

using system_files::File;
using system_files::kClosed;

constexpr DWORD kBetweenTries = 1;  // in milliseconds

OVERLAPPED FarBehindTheEnd() {
    OVERLAPPED place = {};
    place.OffsetHigh = 0x7FFFFFFF;
    return place;
}

// Names of mutexes have no backslashes, and at most 260 characters.
std::wstring MutexName(const std::string &identity) {
    uint64_t digest = 14695981039346656037u;
    for (const char c : identity) {
        digest = (digest ^ static_cast<uint8_t>(c)) * 1099511628211u;
    }
    return L"Global\\hymedian-" + std::to_wstring(digest);
}

}  // namespace

File system_locks::OpenFolder(const std::string &path) {
    std::string identity;
    if (system_folders::Identity(path, &identity) != noErr) {
        return kClosed;
    }
    const HANDLE mutex = CreateMutexW(nullptr, FALSE, MutexName(identity).c_str());
    return mutex == nullptr ? kClosed : windows::FileFrom(mutex);
}

void system_locks::CloseFolder(File folder) {
    ReleaseMutex(windows::HandleOf(folder));
    CloseHandle(windows::HandleOf(folder));
}

std::string system_locks::IdentityOfFolder(File, const std::string &path) {
    std::string identity;
    system_folders::Identity(path, &identity);
    return identity;
}

std::string system_locks::IdentityOfFile(File file) {
    return windows::UTF8From(windows::FinalPath(windows::HandleOf(file)));
}

// A mutex whose owner died is had, too.
bool system_locks::FolderIsKept(File folder) {
    return WaitForSingleObject(windows::HandleOf(folder), 0) == WAIT_TIMEOUT;
}

bool system_locks::FileIsKept(File file) {
    OVERLAPPED place = FarBehindTheEnd();
    return LockFileEx(windows::HandleOf(file), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                      &place) == 0 &&
           GetLastError() == ERROR_LOCK_VIOLATION;
}

void system_locks::UnlockFile(File file) {
    OVERLAPPED place = FarBehindTheEnd();
    UnlockFileEx(windows::HandleOf(file), 0, 1, 0, &place);
}

bool system_locks::Pause() {
    Sleep(kBetweenTries);
    return true;
}
