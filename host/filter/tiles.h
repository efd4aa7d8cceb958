// Cuts what one run of the filter cannot or should not take whole into tiles.
#pragma once

#include <vector>

#include "host/filter/filter_run.h"
#include "hybridmedian/public.h"

// In pixels: how far the filter looks to each side at its largest radius.
constexpr int32_t kFrameMargin = kMaxRadius;

// Cuts `core`, a part of the area to be filtered, so that no framed tile has a side of more than `maxSide`.
// The tiles' cores cover it exactly once; their frames reach beyond it, but not beyond the area.
std::vector<Tile> CutIntoTiles(const VRect &core, const VRect &area, int32_t maxSide = kMaxRunSide);

// Runs the filter over one tile. The filter sees the tile as a document of its own, unless the tile is
// everything that is selected.
FilterOutcome RunTile(const FilterRequest &request, const Tile &tile);

// Filters the tiles one after the other. As with a single run, the destination must be a copy of the source,
// and is one again after a failure.
FilterOutcome RunTiles(const FilterRequest &request, const std::vector<Tile> &tiles);
