// The radius dialog's resources: its window and its items, as 'DLOG' and 'DITL' resources store them in a
// file.
#pragma once

#include <cstdint>
#include <vector>

std::vector<uint8_t> DialogTemplate();
std::vector<uint8_t> DialogItemList();
