// Writes a resource file in the published format: header, data, map, all numbers big-endian.
#pragma once

#include <vector>

#include "platform/types.h"

struct ResourceToWrite {
    OSType type;
    int16_t id;
    std::vector<uint8_t> data;
};

std::vector<uint8_t> ResourceFileBytes(const std::vector<ResourceToWrite> &resources);
