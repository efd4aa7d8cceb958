#include "platform/internal/system_folders.h"

#include <algorithm>
#include <iterator>

#include "platform/mac_roman.h"
#include "platform/windows/errors.h"
#include "platform/windows/handles.h"
#include "platform/windows/texts.h"

namespace {

// What Windows does not have in names, and what Macs write to Windows shares instead.
constexpr struct {
    wchar_t mac;
    wchar_t system;
} kReplacements[] = {
    {L'"', 0xF020}, {L'*', 0xF021}, {L'/', 0xF022},  {L'<', 0xF023},
    {L'>', 0xF024}, {L'?', 0xF025}, {L'\\', 0xF026}, {L'|', 0xF027},
};
constexpr wchar_t kControlReplacements = 0xF000;  // of the characters 1 to 31
constexpr wchar_t kLastSpace = 0xF028;
constexpr wchar_t kLastPeriod = 0xF029;

wchar_t ReplacementOf(wchar_t character) {
    const auto *found = std::find_if(std::begin(kReplacements), std::end(kReplacements),
                                     [=](const auto &entry) { return entry.mac == character; });
    return found != std::end(kReplacements) ? found->system
           : character < 0x20               ? static_cast<wchar_t>(kControlReplacements + character)
                                            : character;
}

wchar_t ReplacedBy(wchar_t character) {
    if (character == kLastSpace || character == kLastPeriod) {
        return character == kLastSpace ? L' ' : L'.';
    }
    const auto *found = std::find_if(std::begin(kReplacements), std::end(kReplacements),
                                     [=](const auto &entry) { return entry.system == character; });
    return found != std::end(kReplacements) ? found->mac
           : character > kControlReplacements && character < kControlReplacements + 0x20
               ? static_cast<wchar_t>(character - kControlReplacements)
               : character;
}

constexpr size_t kDriveLength = 2;  // "C:"

// "C:/", or "//server/share/".
std::string RootOf(const std::string &path) {
    if (!path.starts_with("//")) {
        return path.substr(0, kDriveLength) + '/';
    }
    const size_t share = path.find('/', 2);
    const size_t end = share == std::string::npos ? share : path.find('/', share + 1);
    return path.substr(0, end) + '/';
}

// A drive's letter, or "server/share"; a name cannot hold a colon.
std::string NameOf(const std::string &root) {
    return root.starts_with("//") ? UTF8ToMacRoman(root.substr(2, root.size() - 3)) : root.substr(0, 1);
}

std::string UpperDrive(std::string path) {
    if (path.size() >= kDriveLength && path[1] == ':') {
        path[0] = static_cast<char>(path[0] >= 'a' && path[0] <= 'z' ? path[0] - 'a' + 'A' : path[0]);
    }
    return path;
}

template <typename Ask>
std::string Asked(Ask ask) {
    std::wstring text(ask(nullptr, 0), L'\0');
    text.resize(ask(text.data(), static_cast<UINT>(text.size())));
    return UpperDrive(windows::PathFromSystem(text));
}

}  // namespace

system_folders::Volume system_folders::StartupVolume() {
    return VolumeOf(Asked(GetSystemWindowsDirectoryW));
}

system_folders::Volume system_folders::VolumeOf(const std::string &path) {
    const std::string root = RootOf(path);
    return {NameOf(root), root};
}

std::optional<system_folders::Volume> system_folders::VolumeNamed(std::string_view name) {
    const bool isLetter = name.size() == 1 && name[0] >= 'A' && name[0] <= 'Z';
    if (!isLetter || (GetLogicalDrives() >> (name[0] - 'A') & 1) == 0) {
        return std::nullopt;
    }
    return VolumeOf(std::string(name) + ":/");
}

std::string system_folders::StartupFolder() {
    return Asked([](wchar_t *text, UINT size) { return GetCurrentDirectoryW(size, text); });
}

std::string system_folders::AbsolutePath(const std::string &path) {
    const std::wstring given = windows::UTF16From(path);
    return Asked(
        [&](wchar_t *text, UINT size) { return GetFullPathNameW(given.c_str(), size, text, nullptr); });
}

// Folders are known by their final path: other numbers are not those of all file systems.
OSErr system_folders::Identity(const std::string &path, std::string *identity) {
    const HANDLE folder = CreateFileW(windows::SystemPath(path).c_str(), FILE_READ_ATTRIBUTES,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (folder == INVALID_HANDLE_VALUE) {
        return windows::LastError();
    }
    BY_HANDLE_FILE_INFORMATION information = {};
    const bool isFolder = GetFileInformationByHandle(folder, &information) != 0 &&
                          (information.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
    *identity = windows::UTF8From(windows::FinalPath(folder));
    CloseHandle(folder);
    return isFolder ? noErr : dirNFErr;
}

std::string system_folders::SystemName(std::string_view macName) {
    std::wstring name = windows::UTF16From(MacRomanToUTF8(macName));
    std::transform(name.begin(), name.end(), name.begin(), ReplacementOf);
    if (name.back() == L' ' || name.back() == L'.') {
        name.back() = name.back() == L' ' ? kLastSpace : kLastPeriod;
    }
    return windows::UTF8From(name);
}

std::string system_folders::MacName(std::string_view systemName) {
    std::wstring name = windows::UTF16From(systemName);
    std::transform(name.begin(), name.end(), name.begin(), ReplacedBy);
    return UTF8ToMacRoman(windows::UTF8From(name));
}
