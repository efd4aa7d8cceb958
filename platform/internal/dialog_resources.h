// Dialog resources, whose numbers are big-endian in the file and native in memory.
#pragma once

#include <cstddef>

#include "platform/types.h"

// Turns a 'DLOG' or 'DITL' around in place; any other type stays as it is. False when the resource is too
// short for what it says it holds.
bool ToNativeByteOrder(OSType type, uint8_t *bytes, size_t size);
