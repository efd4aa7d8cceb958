#include "platform/internal/system_locks.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <ctime>

#include "platform/packing.h"

namespace {

using system_files::File;

// flock has no timeout, so the lock is polled; a millisecond is short for the user and cheap for the
// processor.
constexpr timespec kBetweenTries = {0, 1'000'000};

int DescriptorOf(File file) {
    return static_cast<int>(file);
}

}  // namespace

File system_locks::OpenFolder(const std::string &path) {
    return open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

void system_locks::CloseFolder(File folder) {
    close(DescriptorOf(folder));
}

std::string system_locks::IdentityOfFolder(File folder, const std::string &) {
    return IdentityOfFile(folder);
}

std::string system_locks::IdentityOfFile(File file) {
    struct stat info = {};
    fstat(DescriptorOf(file), &info);
    std::string identity;
    AppendRecord(&identity, info.st_dev);
    AppendRecord(&identity, info.st_ino);
    return identity;
}

bool system_locks::FolderIsKept(File folder) {
    return FileIsKept(folder);
}

bool system_locks::FileIsKept(File file) {
    return flock(DescriptorOf(file), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
}

void system_locks::UnlockFile(File file) {
    flock(DescriptorOf(file), LOCK_UN);
}

// Only a handled signal interrupts the sleep, even one whose handler restarts system calls.
bool system_locks::Pause() {
    return nanosleep(&kBetweenTries, nullptr) == 0;
}
