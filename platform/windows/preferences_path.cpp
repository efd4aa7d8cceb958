// The location of the Preferences folder on Windows.
#include <algorithm>

#include "platform/internal/system_folders.h"
#include "platform/native_paths.h"
#include "platform/windows/handles.h"
#include "platform/windows/texts.h"

namespace {

// Services run without %APPDATA%.
std::wstring ApplicationData() {
    const std::wstring data = windows::Variable(L"APPDATA");
    const std::wstring profile = windows::Variable(L"USERPROFILE");
    return !data.empty() || profile.empty() ? data : profile + L"\\AppData\\Roaming";
}

}  // namespace

std::string PreferencesPath() {
    std::wstring path = windows::Variable(L"HYMEDIAN_PREFERENCES");
    if (path.empty()) {
        path = ApplicationData();
        path += path.empty() ? L"" : L"\\hymedian\\Preferences";
    }
    return path.empty() ? std::string() : system_folders::AbsolutePath(windows::UTF8From(path));
}

// With its parents. Those that are there already are not made again.
void MakePreferencesFolder() {
    const std::string folder = PreferencesPath();
    const size_t root = folder.empty() ? 0 : system_folders::VolumeOf(folder).root.size();
    for (size_t end = root; end < folder.size(); ++end) {
        end = std::min(folder.find('/', end), folder.size());
        CreateDirectoryW(windows::SystemPath(folder.substr(0, end)).c_str(), nullptr);
    }
}
