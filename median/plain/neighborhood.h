// The line-shaped sets of pixels through the centre whose medians compete, as offsets from the centre.
#pragma once

#include <cstdint>

constexpr int32_t kMaxRadius = 6;
constexpr int32_t kMaxSetSize = 4 * kMaxRadius + 1;

struct PixelOffset {
    int32_t dy;  // lines below the centre
    int32_t dx;  // pixels to its right
};

// The first two sets are used at every radius; the slanted ones, turned by about 27 degrees, from radius 2
// on. Within a set the order breaks ties.
struct Neighborhood {
    int32_t setSize;  // 4 * radius + 1
    PixelOffset diagonal[kMaxSetSize];
    PixelOffset upright[kMaxSetSize];
    PixelOffset firstSlanted[kMaxSetSize];
    PixelOffset secondSlanted[kMaxSetSize];
};

// `radius` 0 to kMaxRadius.
Neighborhood MakeNeighborhood(int32_t radius);
