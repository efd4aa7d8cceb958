#pragma once

#include <windows.h>

#include "platform/internal/system_files.h"

namespace windows {

inline HANDLE HandleOf(system_files::File file) {
    return reinterpret_cast<HANDLE>(file);
}

// INVALID_HANDLE_VALUE is kClosed.
inline system_files::File FileFrom(HANDLE handle) {
    return reinterpret_cast<system_files::File>(handle);
}

// What a file or folder is called in the end, with links followed; empty if that cannot be told.
std::wstring FinalPath(HANDLE handle);

}  // namespace windows
