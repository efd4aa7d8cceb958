// Which Mac Roman characters are written to a page as HTML entities.
#pragma once

#include <cstdint>
#include <string_view>

// Empty for a character that is written as it is.
std::string_view EntityFor(uint8_t character);
