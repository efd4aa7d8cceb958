#pragma once

#include <cstdint>

// Seconds since the start of 1970 in local time.
int64_t LocalSeconds();
