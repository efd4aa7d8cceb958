// Filters one picture in several workers at once.
#pragma once

#include <string>
#include <vector>

#include "host/filter/orders.h"
#include "host/filter/tiles.h"
#include "host/picture/picture.h"
#include "host/report/failure.h"
#include "host/report/watcher.h"

struct BandRequest {
    std::string pluginFolder;
    FilterOrders orders;
    int32_t workers;
    Watcher watcher;
};

// Reads the opened picture's pixels while workers filter the tiles whose rows have been read. The workers
// share the document's blocks. Fills in what the filter recorded.
MaybeFailure FilterInWorkers(const BandRequest &request, const std::vector<Tile> &tiles, Picture *picture,
                             Action *recorded);
