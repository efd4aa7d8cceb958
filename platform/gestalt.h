// Queries about the system.
#pragma once

#include "platform/types.h"

constexpr OSType gestaltSystemVersion = FourCharCode("sysv");
constexpr OSErr gestaltUnknownErr = -5550;

// gestaltSystemVersion gives 0x1040; no other selector is supported.
OSErr Gestalt(OSType selector, int32_t *response);
