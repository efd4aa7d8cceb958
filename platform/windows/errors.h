#pragma once

#include "platform/types.h"

namespace windows {

// The File Manager's error code for one of Windows'.
OSErr ErrorFromCode(uint32_t code);

// For the call that has just failed.
OSErr LastError();

}  // namespace windows
