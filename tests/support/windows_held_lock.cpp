// Locks belong to threads and handles, so another thread does for another process.
#include <atomic>
#include <thread>

#include "platform/files.h"
#include "platform/internal/system_locks.h"
#include "tests/support/held_lock.h"

namespace {

std::thread other;
std::atomic<bool> wanted;

// Takes the lock and keeps it as long as `keeps` says.
template <typename Keeps>
bool TakeLock(const std::filesystem::path &path, Keeps keeps) {
    const std::string name = path.generic_string();
    system_files::File file = system_files::kClosed;
    if (std::filesystem::is_directory(path)) {
        file = system_locks::OpenFolder(name);
        const bool taken = !system_locks::FolderIsKept(file);
        keeps(taken);
        system_locks::CloseFolder(file);
        return taken;
    }
    system_files::Open(name, fsRdWrPerm, &file);
    const bool taken = !system_locks::FileIsKept(file);
    keeps(taken);
    system_files::Close(file);
    return taken;
}

}  // namespace

bool IsLocked(const std::filesystem::path &path) {
    bool taken = false;
    std::thread([&] { taken = TakeLock(path, [](bool) {}); }).join();
    return !taken;
}

// No signals come here, so it is held for as long as waiting for it may last, and longer.
HeldLock::HeldLock(const std::filesystem::path &path, std::chrono::milliseconds) {
    std::atomic<bool> held = false;
    wanted = true;
    other = std::thread([path, &held] {
        TakeLock(path, [&](bool) {
            held = true;
            held.notify_one();
            wanted.wait(true);
        });
    });
    held.wait(false);
}

HeldLock::~HeldLock() {
    wanted = false;
    wanted.notify_one();
    other.join();
}
