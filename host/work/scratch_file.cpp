#include "host/work/scratch_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

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

std::string TemporaryFolder() {
    const char *folder = std::getenv("TMPDIR");
    return folder == nullptr || *folder == '\0' ? "/tmp" : folder;
}

std::string FolderOfFile(const std::string &file) {
    const fs::path folder = fs::path(file).parent_path();
    return folder.empty() ? "." : folder.string();
}
