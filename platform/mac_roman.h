// Conversion between Mac Roman and UTF-8.
#pragma once

#include <string>
#include <string_view>

std::string MacRomanToUTF8(std::string_view text);
// Characters that Mac Roman lacks become '?'.
std::string UTF8ToMacRoman(std::string_view text);
