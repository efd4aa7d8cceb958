// What the filter remembers of its latest run.
#pragma once

#include <cstdint>
#include <optional>

// The radius that a run takes that is given none; none where there has been no run.
std::optional<int32_t> LastRadius();
