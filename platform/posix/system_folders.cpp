#include "platform/internal/system_folders.h"

#include <sys/stat.h>

#include <filesystem>

#include "platform/mac_roman.h"
#include "platform/packing.h"
#include "platform/posix/errors.h"

namespace {

void SwapSeparators(std::string *name) {
    for (char &c : *name) {
        c = c == '/' ? ':' : c == ':' ? '/' : c;
    }
}

}  // namespace

system_folders::Volume system_folders::StartupVolume() {
    return {"Macintosh HD", "/"};
}

system_folders::Volume system_folders::VolumeOf(const std::string &) {
    return StartupVolume();
}

std::optional<system_folders::Volume> system_folders::VolumeNamed(std::string_view) {
    return std::nullopt;
}

// It may no longer exist.
std::string system_folders::StartupFolder() {
    std::error_code error;
    const std::filesystem::path folder = std::filesystem::current_path(error);
    return error ? "/" : folder.string();
}

std::string system_folders::AbsolutePath(const std::string &path) {
    std::error_code ignored;
    return std::filesystem::absolute(path, ignored);
}

OSErr system_folders::Identity(const std::string &path, std::string *identity) {
    struct stat info;
    if (stat(path.c_str(), &info) != 0) {
        return posix_errors::LastError();
    }
    if (!S_ISDIR(info.st_mode)) {
        return dirNFErr;
    }
    identity->clear();
    AppendRecord(identity, info.st_dev);
    AppendRecord(identity, info.st_ino);
    return noErr;
}

std::string system_folders::SystemName(std::string_view macName) {
    std::string swapped(macName);
    SwapSeparators(&swapped);
    return MacRomanToUTF8(swapped);
}

std::string system_folders::MacName(std::string_view systemName) {
    std::string name = UTF8ToMacRoman(systemName);
    SwapSeparators(&name);
    return name;
}
