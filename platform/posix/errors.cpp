#include "platform/posix/errors.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

OSErr posix_errors::ErrorFromErrno(int error) {
    static constexpr std::pair<int, OSErr> kCodes[] = {
        {ENOENT, fnfErr},  {ENOTDIR, dirNFErr},   {EEXIST, dupFNErr},       {EACCES, permErr},
        {EPERM, permErr},  {EROFS, wPrErr},       {ENOSPC, dskFulErr},      {EDQUOT, dskFulErr},
        {EMFILE, tmfoErr}, {EISDIR, notAFileErr}, {ENAMETOOLONG, bdNamErr}, {EBADF, rfNumErr},
    };
    const auto *code = std::find_if(std::begin(kCodes), std::end(kCodes),
                                    [error](const auto &entry) { return entry.first == error; });
    return code == std::end(kCodes) ? ioErr : code->second;
}

OSErr posix_errors::LastError() {
    return ErrorFromErrno(errno);
}
