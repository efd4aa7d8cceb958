// The published layout of a resource file: a header, the data of all resources, and a map of types and
// numbers. All numbers are big-endian.
#pragma once

#include <cstddef>
#include <vector>

#include "platform/types.h"

struct ResourceEntry {
    OSType type;
    int16_t id;
    const uint8_t *data;  // inside the file's bytes
    size_t size;
};

// False when anything in the file points outside it.
bool ParseResourceFile(const std::vector<uint8_t> &bytes, std::vector<ResourceEntry> *entries);
