// Byte order of dialog resources: big-endian in the file, native in memory.
#pragma once

#include <cstddef>

#include "platform/types.h"

// Swaps a 'DLOG' or 'DITL' in place; any other type is left alone. False when the resource is shorter than
// its contents claim.
bool ToNativeByteOrder(OSType type, uint8_t *bytes, size_t size);
