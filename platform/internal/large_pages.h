#pragma once

#include <cstddef>

// Faulting in a big block costs a quarter as much with large pages, where the system has them for the asking.
void TakeLargePages(void *memory, size_t size);
