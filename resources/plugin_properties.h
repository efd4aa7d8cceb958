// What the plug-in declares about itself, as resource 'PiPL'.
#pragma once

#include <cstdint>
#include <vector>

std::vector<uint8_t> PropertyList();
