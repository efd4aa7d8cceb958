#include <dlfcn.h>

#include <filesystem>

#include "platform/posix_paths.h"

std::string FolderOfCode(const void *address) {
    Dl_info library;
    std::error_code error;
    const std::filesystem::path file =
        dladdr(address, &library) == 0 ? "" : std::filesystem::canonical(library.dli_fname, error);
    return file.parent_path();
}
