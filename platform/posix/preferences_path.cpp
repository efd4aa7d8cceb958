// The location of the Preferences folder on POSIX.
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

#include "platform/native_paths.h"

namespace fs = std::filesystem;

namespace {

std::string Variable(const char *name) {
    const char *value = std::getenv(name);
    return value == nullptr ? std::string() : value;
}

// Hosts may run without an environment.
std::string HomeFolder() {
    std::string home = Variable("HOME");
    passwd entry;
    passwd *user = nullptr;
    char texts[4096];
    if (home.empty() && getpwuid_r(getuid(), &entry, texts, sizeof texts, &user) == 0 && user != nullptr) {
        home = user->pw_dir;
    }
    return home;
}

}  // namespace

std::string PreferencesPath() {
    if (std::string own = Variable("HYMEDIAN_PREFERENCES"); !own.empty()) {
        return own;
    }
    const std::string configHome = Variable("XDG_CONFIG_HOME");
    return (configHome.empty() ? HomeFolder() + "/.config" : configHome) + "/hymedian/Preferences";
}

void MakePreferencesFolder() {
    fs::path folder = PreferencesPath();
    // With a trailing slash, parent_path would be the folder itself.
    while (!folder.has_filename() && folder.has_relative_path()) {
        folder = folder.parent_path();
    }
    std::error_code error;
    fs::create_directories(folder.parent_path(), error);
    mkdir(folder.c_str(), S_IRWXU);
}
