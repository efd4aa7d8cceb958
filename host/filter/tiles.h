// Cuts pictures that one run of the filter cannot or should not take whole into tiles.
#pragma once

#include <vector>

#include "host/filter/filter_run.h"

struct TileLimits {
    int32_t bands = 1;              // at least this many tiles from top to bottom, which takes as many rows
    int32_t maxSide = kMaxRunSide;  // of the framed tile, in pixels
};

// How many bands are worth the margins and the start of workers.
int32_t BandsFor(const Document &document, int32_t jobs);

// The cores cover the area exactly once; frames stay inside it.
std::vector<Tile> CutIntoTiles(const VRect &area, const TileLimits &limits);

// Runs the filter over one tile. The filter sees the tile as a document of its own, unless the tile is
// everything that is selected.
FilterOutcome RunTile(const FilterRequest &request, const Tile &tile);

// Filters the tiles one after the other. As with a single run, the destination must be a copy of the source,
// and is one again after a failure.
FilterOutcome RunTiles(const FilterRequest &request, const std::vector<Tile> &tiles);
