// Filters a test image without a run around it.
#pragma once

#include "tests/support/test_images.h"

std::vector<uint8_t> Filtered(const TestImage &source, float radius);
