// One picture filtered by several workers at once.
#pragma once

#include <string>
#include <vector>

#include "host/filter_run.h"
#include "host/tiles.h"

struct BandRequest {
    std::string pluginFolder;
    Document *document;
    Action action;
    FilterDialog dialog;
    int32_t workers;
    Watcher watcher;
};

// Like FilterTiles, with the tiles spread over the workers.
FilterOutcome FilterInWorkers(const BandRequest &request, const std::vector<Tile> &tiles);
