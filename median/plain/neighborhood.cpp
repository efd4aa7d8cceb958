#include "median/plain/neighborhood.h"

#include <initializer_list>

namespace {

constexpr PixelOffset kCenter = {0, 0};

// One step aside for every two steps along.
int32_t Slope(int32_t k) {
    return (k + 1) / 2;
}

void FillDiagonal(int32_t radius, PixelOffset *next) {
    for (int32_t k = 1; k <= radius; ++k) {
        for (const PixelOffset offset : {PixelOffset{k, -k}, {k, k}, {-k, -k}, {-k, k}}) {
            *next++ = offset;
        }
    }
    *next = kCenter;
}

void FillUpright(int32_t radius, PixelOffset *next) {
    for (int32_t k = 1; k <= radius; ++k) {
        *next++ = {k, 0};
        *next++ = {-k, 0};
    }
    for (int32_t dx = -radius; dx <= radius; ++dx) {
        *next++ = {0, dx};
    }
}

// Two perpendicular lines; a `side` of -1 instead of 1 mirrors them.
void FillSlanted(int32_t radius, int32_t side, PixelOffset *next) {
    for (int32_t k = 1; k <= radius; ++k) {
        *next++ = {k, side * Slope(k)};
        *next++ = {-k, -side * Slope(k)};
    }
    for (int32_t k = 1; k <= radius; ++k) {
        *next++ = {Slope(k), -side * k};
        *next++ = {-Slope(k), side * k};
    }
    *next = kCenter;
}

}  // namespace

Neighborhood MakeNeighborhood(int32_t radius) {
    Neighborhood neighborhood = {};
    neighborhood.setSize = 4 * radius + 1;
    FillDiagonal(radius, neighborhood.diagonal);
    FillUpright(radius, neighborhood.upright);
    FillSlanted(radius, 1, neighborhood.firstSlanted);
    FillSlanted(radius, -1, neighborhood.secondSlanted);
    return neighborhood;
}
