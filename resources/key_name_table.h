// Names and units of the settings, as resource 'TEXT' 9999: 64-byte records, the first of them a heading. '_'
// ends a text.
#pragma once

#include <cstdint>
#include <vector>

std::vector<uint8_t> KeyNameTable();
