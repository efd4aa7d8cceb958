#include "host/work/output_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <set>

namespace fs = std::filesystem;

namespace {

// Names of temporary files begin with this.
constexpr char kTemporaryPrefix[] = ".hymedian-";
constexpr mode_t kPermissionBits = 0777;
constexpr mode_t kWriteBits = 0222;
constexpr char kExistsAlready[] = "exists already; --force replaces it";
constexpr char kProtected[] = "is write-protected; --force replaces it all the same";
constexpr char kOfAnotherOwner[] =
    "belongs to another user or group, and would be yours; --force replaces it all the same";

MaybeFailure Unwritable(const OutputFile &output, int error) {
    return FileFailure(output.name, std::string("cannot be written: ") + std::strerror(error));
}

// A name without a slash is in the working folder.
fs::path FolderOf(const OutputFile &output) {
    const fs::path folder = fs::path(output.target).parent_path();
    return folder.empty() ? fs::path(".") : folder;
}

MaybeFailure CheckFolder(const OutputFile &output) {
    const fs::path folder = FolderOf(output);
    std::error_code error;
    if (!fs::is_directory(folder, error)) {
        return FileFailure(output.name, "there is no folder " + folder.string());
    }
    if (access(folder.c_str(), W_OK | X_OK) != 0) {
        return FileFailure(output.name, "the folder " + folder.string() + " cannot be written to");
    }
    return std::nullopt;
}

bool AreSame(const struct stat &a, const struct stat &b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// This has to be checked, since replacing a file by renaming takes no permission to write to it. The mode
// counts as well: root has every permission.
bool IsProtected(const std::string &file, const struct stat &info) {
    return (info.st_mode & kWriteBits) == 0 || access(file.c_str(), W_OK) != 0;
}

MaybeFailure CheckExisting(const OutputRequest &request, const struct stat &existing,
                           const struct stat &input) {
    const bool sameFile = AreSame(existing, input);
    if (sameFile && !request.inPlace) {
        return Failure{kExitUsage, request.outputFile +
                                       ": this is the input, which is written over only with --in-place."};
    }
    if (!S_ISREG(existing.st_mode)) {
        return FileFailure(request.outputFile, "exists already and is not a regular file");
    }
    if (request.force || (sameFile && !IsProtected(request.outputFile, existing))) {
        return std::nullopt;
    }
    return FileFailure(request.outputFile, sameFile ? kProtected : kExistsAlready);
}

// This can fail: only root may give files away, and some file systems only know one owner.
bool KeepOwner(const OutputFile &output) {
    struct stat written;
    return !output.owner ||
           (fstat(output.descriptor, &written) == 0 && written.st_uid == output.owner->user &&
            written.st_gid == output.owner->group) ||
           fchown(output.descriptor, output.owner->user, output.owner->group) == 0;
}

// Moves without replacing. If the file system cannot do that in one step, link also refuses an existing name.
int MoveToFreeName(const char *from, const char *to) {
    if (renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EINVAL && errno != ENOSYS) {
        return -1;
    }
    return link(from, to) == 0 ? unlink(from) : -1;
}

// A running program holds a lock on each of its temporary files; one that can be locked was left by a run
// that died.
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

// Holds the lock as long as the descriptor is open. False if another run took the file for dead in the
// meantime.
bool LockTemporary(int descriptor) {
    struct stat info;
    return Locks(descriptor) && fstat(descriptor, &info) == 0 && info.st_nlink > 0;
}

// Removes temporary files of dead runs, once per folder and process.
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

}  // namespace

OutputFile::~OutputFile() {
    if (descriptor >= 0) {
        close(descriptor);
    }
    RemoveTemporary(this);
}

void RemoveTemporary(OutputFile *output) {
    if (!output->temporary.empty()) {
        unlink(output->temporary.c_str());
        output->temporary.clear();
    }
}

MaybeFailure PlanOutput(const OutputRequest &request, OutputFile *output) {
    output->name = request.outputFile;
    output->target = request.outputFile;
    output->force = request.force;
    struct stat input;
    if (stat(request.inputFile.c_str(), &input) != 0) {
        return FileFailure(request.inputFile, std::strerror(errno));
    }
    output->permissions = input.st_mode & kPermissionBits;
    struct stat existing;
    if (stat(request.outputFile.c_str(), &existing) == 0) {
        if (MaybeFailure failure = CheckExisting(request, existing, input)) {
            return failure;
        }
        output->replace = true;
        if (AreSame(existing, input)) {
            output->owner = {existing.st_uid, existing.st_gid};
        }
        std::error_code error;
        output->target = fs::canonical(request.outputFile, error);
    }
    return CheckFolder(*output);
}

MaybeFailure CreateTemporary(OutputFile *output) {
    const fs::path folder = FolderOf(*output);
    const std::string suffix = fs::path(output->target).extension();
    ClearDeadTemporaries(folder);
    for (;;) {
        std::string path = folder / (std::string(kTemporaryPrefix) + "XXXXXX" + suffix);
        output->descriptor = mkostemps(path.data(), static_cast<int>(suffix.size()), O_CLOEXEC);
        if (output->descriptor < 0) {
            return Unwritable(*output, errno);
        }
        if (LockTemporary(output->descriptor)) {
            output->temporary = path;
            return std::nullopt;
        }
        close(output->descriptor);
    }
}

MaybeFailure Publish(OutputFile *output) {
    if (!KeepOwner(*output) && !output->force) {
        return FileFailure(output->name, kOfAnotherOwner);
    }
    if (fchmod(output->descriptor, output->permissions) != 0 || fsync(output->descriptor) != 0) {
        return Unwritable(*output, errno);
    }
    const char *from = output->temporary.c_str();
    const char *to = output->target.c_str();
    if ((output->replace ? std::rename(from, to) : MoveToFreeName(from, to)) != 0) {
        return errno == EEXIST ? FileFailure(output->name, kExistsAlready) : Unwritable(*output, errno);
    }
    output->temporary.clear();
    return std::nullopt;
}
