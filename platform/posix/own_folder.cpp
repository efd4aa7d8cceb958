// Where the module or program that this code was linked into was loaded from.
#include <dlfcn.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "platform/native_paths.h"

namespace {

// The mapped file that holds an address.
std::string MappedFile(uintptr_t address) {
    std::ifstream maps("/proc/self/maps");
    std::string line;
    while (std::getline(maps, line)) {
        // "begin-end ...", both hexadecimal.
        char *rest = nullptr;
        const uintptr_t begin = std::strtoul(line.c_str(), &rest, 16);
        const uintptr_t end = *rest == '-' ? std::strtoul(rest + 1, nullptr, 16) : 0;
        if (address >= begin && address < end) {
            return line.substr(std::min(line.find('/'), line.size()));
        }
    }
    return {};
}

}  // namespace

std::string OwnFolder() {
    Dl_info self = {};
    const auto *here = reinterpret_cast<const void *>(&OwnFolder);
    std::string file = dladdr(here, &self) == 0 ? "" : self.dli_fname;
    // A relative path is only good as long as the current folder is that of the time of loading.
    if (file.empty() || file[0] != '/') {
        file = MappedFile(reinterpret_cast<uintptr_t>(here));
    }
    std::error_code error;
    return std::filesystem::canonical(file, error).parent_path().string();
}
