#include "tests/support/filtered_image.h"

#include <gtest/gtest.h>

#include "median/hybrid_filter.h"

std::vector<uint8_t> Filtered(const TestImage &source, float radius) {
    NamedImage *image = MakeFrom(source);
    EXPECT_EQ(NewHyMedian(image, radius, false, nullptr, 1, 2, 3), noErr);
    std::vector<uint8_t> filtered = BytesOf(image);
    TossImage(image);
    return filtered;
}
