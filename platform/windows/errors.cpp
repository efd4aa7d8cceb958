#include "platform/windows/errors.h"

#include <windows.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

// Not in all headers.
constexpr DWORD kDiskQuotaExceeded = 1295;

}  // namespace

OSErr windows::ErrorFromCode(uint32_t code) {
    // A path that is not found is told from a file by whoever knows the folder.
    static constexpr std::pair<DWORD, OSErr> kCodes[] = {
        {ERROR_FILE_NOT_FOUND, fnfErr},
        {ERROR_PATH_NOT_FOUND, fnfErr},
        {ERROR_BAD_NETPATH, nsvErr},
        {ERROR_BAD_NET_NAME, nsvErr},
        {ERROR_DIRECTORY, dirNFErr},
        {ERROR_FILE_EXISTS, dupFNErr},
        {ERROR_ALREADY_EXISTS, dupFNErr},
        {ERROR_ACCESS_DENIED, permErr},
        {ERROR_WRITE_PROTECT, wPrErr},
        {ERROR_SHARING_VIOLATION, fBsyErr},
        {ERROR_LOCK_VIOLATION, fBsyErr},
        {ERROR_HANDLE_DISK_FULL, dskFulErr},
        {ERROR_DISK_FULL, dskFulErr},
        {kDiskQuotaExceeded, dskFulErr},
        {ERROR_TOO_MANY_OPEN_FILES, tmfoErr},
        {ERROR_INVALID_HANDLE, rfNumErr},
        {ERROR_INVALID_NAME, bdNamErr},
        {ERROR_BAD_PATHNAME, bdNamErr},
        {ERROR_FILENAME_EXCED_RANGE, bdNamErr},
        {ERROR_NEGATIVE_SEEK, posErr},
    };
    const auto *found = std::find_if(std::begin(kCodes), std::end(kCodes),
                                     [code](const auto &entry) { return entry.first == code; });
    return found == std::end(kCodes) ? ioErr : found->second;
}

OSErr windows::LastError() {
    return ErrorFromCode(GetLastError());
}
