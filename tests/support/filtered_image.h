// What the filter makes of a test image, without a run around it.
#pragma once

#include "median/hybrid_filter.h"
#include "tests/support/test_images.h"

inline std::vector<uint8_t> Filtered(const TestImage &source, float radius) {
    NamedImage *image = MakeFrom(source);
    EXPECT_EQ(NewHyMedian(image, radius, false, nullptr, 1, 2, 3), noErr);
    std::vector<uint8_t> filtered = BytesOf(image);
    TossImage(image);
    return filtered;
}
