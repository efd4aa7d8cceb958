// How a picture is cut into bands of rows, and where these lie in memory while they are in work.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/document/document.h"

// Rows of the picture. A frame adds the rows around that the filter looks at; it overlaps the next one.
struct Band {
    int32_t top, bottom;
    int32_t frameTop, frameBottom;
    bool selected;  // in part at least; otherwise there is nothing to filter
};

// The store is a document of the picture's kind. It either holds the whole picture, or a number of slots,
// which the bands' frames use in turn.
struct BandPlan {
    std::vector<Band> bands;  // from top to bottom, each row in one
    size_t slots = 0;         // bands that can be in the store at once
    bool whole = false;
    int32_t storeRows = 0;
};

enum class Store { slots, whole };

BandPlan PlanBands(const DocumentShape &picture, int32_t jobs, Store store);
// The store's row where the band's frame begins.
int32_t StoreRow(const BandPlan &plan, size_t band);

// Whether several workers would filter the picture faster than one; starting them takes its time.
bool IsWorthWorkers(const DocumentShape &picture, int32_t jobs);
