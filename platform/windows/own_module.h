#pragma once

#include <windows.h>

namespace windows {

// The module or program that this code was linked into.
HMODULE OwnModule();

}  // namespace windows
