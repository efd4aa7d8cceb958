// The files behind file references.
#pragma once

#include "platform/internal/system_files.h"

// system_files::kClosed if no open file has the reference.
system_files::File FileOf(int16_t refNum);
