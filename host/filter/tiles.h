// Pictures that one run of the filter cannot or should not take whole, cut into tiles.
#pragma once

#include <vector>

#include "host/filter/filter_run.h"

struct TileLimits {
    int32_t bands = 1;              // at least so many tiles from top to bottom, where the rows suffice
    int32_t maxSide = kMaxRunSide;  // of the framed tile
};

// How many bands are worth their margins and a worker each.
int32_t BandsFor(const Document &document, int32_t jobs);

// The cores cover the area once; frames stay inside it.
std::vector<Tile> CutIntoTiles(const VRect &area, const TileLimits &limits);

// Runs the filter over one tile, which it is shown as a document of its own unless it is all that is
// selected.
FilterOutcome RunTile(const FilterRequest &request, const Tile &tile);

// Filters the tiles one after the other. As with one run, the destination has to be a copy of the source, and
// is one again after a failure.
FilterOutcome RunTiles(const FilterRequest &request, const std::vector<Tile> &tiles);
