// What the plug-in declares of itself, as resource 'PiPL'.
#pragma once

#include <cstdint>
#include <vector>

constexpr int16_t kPropertyListID = 16000;

std::vector<uint8_t> PropertyList();
