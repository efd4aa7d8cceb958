#include <sys/xattr.h>

#include "tests/support/file_facts.h"

std::string TypeAndCreator(const std::filesystem::path &file) {
    char info[32] = {};
    const ssize_t size = getxattr(file.c_str(), "user.com.apple.FinderInfo", info, sizeof info);
    return size == sizeof info ? std::string(info, 8) : std::string();
}
