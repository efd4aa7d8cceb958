// Volumes, folders and names, as the File Manager needs them of the system. Paths are absolute and in UTF-8,
// with '/' between their parts on every system.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/types.h"

namespace system_folders {

struct Volume {
    std::string name;
    std::string root;  // with a '/' at its end
};

Volume StartupVolume();
Volume VolumeOf(const std::string &path);
// The volume of that name, if there can be one.
std::optional<Volume> VolumeNamed(std::string_view name);

// The folder that the process was started in.
std::string StartupFolder();
// Of a path as users and hosts give it.
std::string AbsolutePath(const std::string &path);
// The same for all paths of a folder. dirNFErr if it is none.
OSErr Identity(const std::string &path, std::string *identity);

// A file's name on a Mac and on this system. `macName` has no colon, and is neither "." nor "..".
std::string SystemName(std::string_view macName);
std::string MacName(std::string_view systemName);

}  // namespace system_folders
