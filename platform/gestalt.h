// What the system tells about itself.
#pragma once

#include "platform/types.h"

#pragma GCC visibility push(default)

constexpr OSType gestaltSystemVersion = FourCharCode("sysv");
constexpr OSErr gestaltUnknownErr = -5550;

extern "C" {

// The system's version is 0x1040; there are no other selectors.
OSErr Gestalt(OSType selector, int32_t *response);

}  // extern "C"

#pragma GCC visibility pop
