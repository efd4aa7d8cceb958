// Where the module or program that this code was linked into was loaded from.
#include <cstdint>
#include <cstdio>
#include <fstream>

#include "platform/posix_paths.h"

// The path by which a module was loaded may have been relative to a folder that is no longer the current one, so it is
// looked up among the files that are mapped.
std::string OwnFolder() {
    const auto here = reinterpret_cast<uintptr_t>(&OwnFolder);
    std::ifstream maps("/proc/self/maps");
    std::string line;
    while (std::getline(maps, line)) {
        uintptr_t begin = 0;
        uintptr_t end = 0;
        const size_t path = line.find('/');
        if (std::sscanf(line.c_str(), "%lx-%lx", &begin, &end) == 2 && here >= begin && here < end) {
            return path == std::string::npos ? std::string() : line.substr(path, line.rfind('/') - path);
        }
    }
    return {};
}
