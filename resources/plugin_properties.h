// What the plug-in declares about itself, as resource 'PiPL'.
#pragma once

#include <cstdint>
#include <vector>

std::vector<uint8_t> PropertyList();

// As hosts on Windows read it: little-endian, with texts that end with a zero, and for a module that exports
// PluginMain.
std::vector<uint8_t> WindowsPropertyList();
