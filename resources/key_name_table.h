// Names and units of the settings, as resource 'TEXT' 9999: 64-byte records, the first a heading. '_' ends a
// text.
#pragma once

#include <cstdint>
#include <vector>

constexpr int16_t kKeyNameTableID = 9999;

std::vector<uint8_t> KeyNameTable();
