// Files are shared with whoever else opens them, as elsewhere, so that they can be deleted while they are
// open.
#include "platform/internal/system_files.h"

#include <algorithm>
#include <atomic>
#include <vector>

#include "platform/files.h"
#include "platform/windows/errors.h"
#include "platform/windows/handles.h"
#include "platform/windows/texts.h"

namespace {

using system_files::File;

constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
// Of Windows 10, and not in all headers.
constexpr auto kDispositionEx = static_cast<FILE_INFO_BY_HANDLE_CLASS>(21);
constexpr DWORD kDeleteNameAtOnce = 0x1 | 0x2;
// More than fits a single call is transferred by several.
constexpr int64_t kLargestTransfer = 1 << 30;

std::atomic<uint32_t> filesMovedAside = 0;

// A link, or a folder from elsewhere; files that a cloud keeps are none.
bool IsLink(const std::wstring &path) {
    WIN32_FIND_DATAW found;
    const HANDLE search = FindFirstFileW(path.c_str(), &found);
    if (search == INVALID_HANDLE_VALUE) {
        return false;
    }
    FindClose(search);
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           IsReparseTagNameSurrogate(found.dwReserved0);
}

bool HasAttribute(const std::wstring &path, DWORD attribute) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & attribute) != 0;
}

// Windows says that access to a folder is denied if it is taken for a file.
OSErr ErrorOfOpening(const std::wstring &path) {
    const OSErr err = windows::LastError();
    return err == permErr && HasAttribute(path, FILE_ATTRIBUTE_DIRECTORY) ? notAFileErr : err;
}

bool Rename(HANDLE file, const std::wstring &to) {
    std::vector<char> bytes(sizeof(FILE_RENAME_INFO) + to.size() * sizeof(wchar_t));
    auto *information = reinterpret_cast<FILE_RENAME_INFO *>(bytes.data());
    information->FileNameLength = static_cast<DWORD>(to.size() * sizeof(wchar_t));
    std::copy(to.begin(), to.end(), information->FileName);
    return SetFileInformationByHandle(file, FileRenameInfo, information, static_cast<DWORD>(bytes.size())) !=
           0;
}

// Where names stay taken until the last handle is closed, the file gets another one first.
bool DeleteOpened(HANDLE file, const std::wstring &path) {
    DWORD atOnce = kDeleteNameAtOnce;
    if (SetFileInformationByHandle(file, kDispositionEx, &atOnce, sizeof atOnce) != 0) {
        return true;
    }
    const bool moved = Rename(file, path + L"." + std::to_wstring(GetCurrentProcessId()) + L"-" +
                                        std::to_wstring(++filesMovedAside) + L".deleted");
    FILE_DISPOSITION_INFO onClose = {TRUE};
    if (SetFileInformationByHandle(file, FileDispositionInfo, &onClose, sizeof onClose) != 0) {
        return true;
    }
    const DWORD reason = GetLastError();
    if (moved) {
        Rename(file, path);
    }
    SetLastError(reason);
    return false;
}

DWORD LengthOf(int64_t wanted) {
    return static_cast<DWORD>(std::min(wanted, kLargestTransfer));
}

}  // namespace

OSErr system_files::Find(const std::string &path) {
    return GetFileAttributesW(windows::SystemPath(path).c_str()) != INVALID_FILE_ATTRIBUTES
               ? noErr
               : windows::LastError();
}

bool system_files::IsFolder(const std::string &path) {
    return HasAttribute(windows::SystemPath(path), FILE_ATTRIBUTE_DIRECTORY);
}

// The folder decides who may read it. Type and creator are left out: a second stream would be lost on the way
// to other disks, with a warning each time.
OSErr system_files::Create(const std::string &path, OSType, OSType) {
    const std::wstring name = windows::SystemPath(path);
    const HANDLE file = CreateFileW(name.c_str(), GENERIC_WRITE, kShareAll, nullptr, CREATE_NEW,
                                    FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        const OSErr err = windows::LastError();
        return err == permErr && HasAttribute(name, FILE_ATTRIBUTE_DIRECTORY) ? dupFNErr : err;
    }
    CloseHandle(file);
    return noErr;
}

OSErr system_files::MakeFolder(const std::string &path) {
    return CreateDirectoryW(windows::SystemPath(path).c_str(), nullptr) != 0 ? noErr : windows::LastError();
}

OSErr system_files::Open(const std::string &path, int8_t permission, File *file) {
    static constexpr DWORD kAccess[] = {GENERIC_READ | GENERIC_WRITE, GENERIC_READ, GENERIC_WRITE,
                                        GENERIC_READ | GENERIC_WRITE};
    const std::wstring name = windows::SystemPath(path);
    *file = kClosed;
    if (IsLink(name)) {
        return ioErr;
    }
    const auto open = [&](DWORD access) {
        return windows::FileFrom(CreateFileW(name.c_str(), access, kShareAll, nullptr, OPEN_EXISTING,
                                             FILE_ATTRIBUTE_NORMAL, nullptr));
    };
    *file = open(kAccess[permission]);
    if (*file == kClosed && permission == fsCurPerm &&
        (GetLastError() == ERROR_ACCESS_DENIED || GetLastError() == ERROR_WRITE_PROTECT)) {
        *file = open(GENERIC_READ);
    }
    return *file == kClosed ? ErrorOfOpening(name) : noErr;
}

OSErr system_files::Delete(const std::string &path) {
    const std::wstring name = windows::SystemPath(path);
    if (HasAttribute(name, FILE_ATTRIBUTE_DIRECTORY)) {
        return notAFileErr;
    }
    const HANDLE file = CreateFileW(name.c_str(), DELETE, kShareAll, nullptr, OPEN_EXISTING,
                                    FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return windows::LastError();
    }
    const OSErr err = DeleteOpened(file, name) ? noErr : windows::LastError();
    CloseHandle(file);
    return err;
}

OSErr system_files::Read(File file, int64_t wanted, void *buffer, int64_t *count) {
    DWORD got = 0;
    const BOOL done = ReadFile(windows::HandleOf(file), buffer, LengthOf(wanted), &got, nullptr);
    *count = got;
    return done != 0 ? noErr : windows::LastError();
}

OSErr system_files::Write(File file, int64_t wanted, const void *buffer, int64_t *count) {
    DWORD put = 0;
    const BOOL done = WriteFile(windows::HandleOf(file), buffer, LengthOf(wanted), &put, nullptr);
    *count = put;
    return done != 0 ? noErr : windows::LastError();
}

OSErr system_files::Size(File file, int64_t *size) {
    LARGE_INTEGER length;
    if (GetFileSizeEx(windows::HandleOf(file), &length) == 0) {
        return windows::LastError();
    }
    *size = length.QuadPart;
    return noErr;
}

OSErr system_files::Seek(File file, int16_t positionMode, int64_t offset, int64_t *position) {
    static constexpr DWORD kOrigins[] = {FILE_CURRENT, FILE_BEGIN, FILE_END, FILE_CURRENT};
    LARGE_INTEGER way;
    LARGE_INTEGER place;
    way.QuadPart = offset;
    if (SetFilePointerEx(windows::HandleOf(file), way, &place, kOrigins[positionMode]) == 0) {
        return windows::LastError();
    }
    *position = place.QuadPart;
    return noErr;
}

OSErr system_files::Reserve(File file, int64_t size) {
    int64_t end = 0;
    if (Size(file, &end) == noErr && size <= end) {
        return noErr;  // less space than that would cut the file off
    }
    FILE_ALLOCATION_INFO allocation;
    allocation.AllocationSize.QuadPart = size;
    // Where space cannot be reserved, it is found out when it is written that there is none.
    const bool done = SetFileInformationByHandle(windows::HandleOf(file), FileAllocationInfo, &allocation,
                                                 sizeof allocation) != 0 ||
                      GetLastError() == ERROR_CALL_NOT_IMPLEMENTED;
    return done ? noErr : windows::LastError();
}

OSErr system_files::Close(File file) {
    return CloseHandle(windows::HandleOf(file)) != 0 ? noErr : windows::LastError();
}

std::wstring windows::FinalPath(HANDLE handle) {
    std::wstring path(MAX_PATH, L'\0');
    DWORD length = GetFinalPathNameByHandleW(handle, path.data(), MAX_PATH, 0);
    if (length > MAX_PATH) {
        path.resize(length);
        length = GetFinalPathNameByHandleW(handle, path.data(), length, 0);
    }
    path.resize(length);
    return path;
}
