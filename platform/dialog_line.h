// How hymedian answers a module's dialogs itself: the record's platformData points to a line to it.
#pragma once

#include <cstdint>

#include "platform/types.h"

constexpr OSType kDialogLineTag = FourCharCode("HyDL");

struct DialogLine {
    OSType tag;
    uint32_t size;  // of this record, in bytes
    int32_t line;   // a descriptor, open as long as the run: the module's end
};
