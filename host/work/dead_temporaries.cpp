#include "host/work/dead_temporaries.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <set>

namespace fs = std::filesystem;

namespace {

bool Locks(int descriptor) {
    return flock(descriptor, LOCK_EX | LOCK_NB) == 0;
}

void RemoveIfDead(const fs::path &file) {
    const int descriptor = open(file.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        return;
    }
    struct stat info;
    if (fstat(descriptor, &info) == 0 && S_ISREG(info.st_mode) && Locks(descriptor)) {
        unlink(file.c_str());
    }
    close(descriptor);
}

}  // namespace

bool LockTemporary(int descriptor) {
    struct stat info;
    return Locks(descriptor) && fstat(descriptor, &info) == 0 && info.st_nlink > 0;
}

void ClearDeadTemporaries(const fs::path &folder) {
    static std::set<fs::path> cleared;
    std::error_code error;
    if (!cleared.insert(fs::absolute(folder, error)).second) {
        return;
    }
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (entry->path().filename().string().rfind(kTemporaryPrefix, 0) == 0) {
            RemoveIfDead(entry->path());
        }
    }
}
