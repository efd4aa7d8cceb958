#pragma once

#include "platform/types.h"

namespace posix_errors {

// The File Manager's error code for an errno value.
OSErr ErrorFromErrno(int error);

// For the call that has just failed.
OSErr LastError();

}  // namespace posix_errors
