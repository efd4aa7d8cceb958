// Filters one picture as a stream: bands of its rows are read in order, filtered, and written in order, all
// at the same time.
#pragma once

#include <functional>
#include <string>

#include "host/filter/orders.h"
#include "host/filter/plugin.h"
#include "host/picture/picture.h"
#include "host/picture/picture_writer.h"
#include "host/report/failure.h"
#include "host/report/watcher.h"
#include "host/work/band_plan.h"

// Who filters: this process, or several workers.
struct FilterPlace {
    Plugin *plugin;
    std::string pluginFolder;
    int32_t jobs;
};

struct StreamRequest {
    FilterPlace place;
    FilterOrders orders;
    Watcher watcher;
    // With a whole store, both blocks are the picture's document's own afterwards.
    Store store;
    // Writes the rows; called from a thread of its own.
    std::function<MaybeFailure(const RowSource &rows)> write;
    // Called if the user cancels while the picture library reads or writes something that it will not let go
    // of for long. Must end the process, as threads are still at work.
    std::function<void(const Failure &)> leave;
};

// Reads the rest of the opened picture, which may already have a selection. Fills in what the filter
// recorded.
MaybeFailure StreamPicture(const StreamRequest &request, Picture *picture, Action *recorded);
