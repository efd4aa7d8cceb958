#include "host/work/scratch_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr size_t kBlockBytes = 1 << 20;  // moved at a time

}  // namespace

ScratchFile::~ScratchFile() {
    if (descriptor >= 0) {
        close(descriptor);
    }
}

bool MakeScratch(const std::string &folder, ScratchFile *file) {
    std::string name = (fs::path(folder) / ".hymedian-XXXXXX").string();
    file->descriptor = mkostemp(name.data(), O_CLOEXEC);
    if (file->descriptor < 0) {
        return false;
    }
    unlink(name.c_str());
    file->path = "/proc/" + std::to_string(getpid()) + "/fd/" + std::to_string(file->descriptor);
    return true;
}

MaybeFailure OpenScratch(const std::string &output, const std::string &input, ScratchFile *file) {
    return MakeScratch(FolderOfFile(output), file) || MakeScratch(TemporaryFolder(), file)
               ? std::nullopt
               : MaybeFailure(FileFailure(
                     input, std::string("no temporary file can be made for it: ") + std::strerror(errno)));
}

bool CopyBytes(int from, int to) {
    std::vector<char> block(kBlockBytes);
    for (;;) {
        const ssize_t count = read(from, block.data(), block.size());
        if (count == 0) {
            return true;
        }
        for (ssize_t done = 0; done < count;) {
            const ssize_t written = write(to, block.data() + done, static_cast<size_t>(count - done));
            if (written < 0 && errno != EINTR) {
                return false;
            }
            done += std::max<ssize_t>(written, 0);
        }
        if (count < 0 && errno != EINTR) {
            return false;
        }
    }
}

std::string TemporaryFolder() {
    const char *folder = std::getenv("TMPDIR");
    return folder == nullptr || *folder == '\0' ? "/tmp" : folder;
}

std::string FolderOfFile(const std::string &file) {
    const fs::path folder = fs::path(file).parent_path();
    return folder.empty() ? "." : folder.string();
}
