// Filters one band of a picture, in whichever process.
#pragma once

#include "host/filter/filter_run.h"
#include "host/work/band_plan.h"

// A band as a document of its own.
struct BandDocument {
    Document document;    // of the band's frame; the blocks are borrowed
    int32_t top, bottom;  // the band's own rows in it
};

struct LentBlocks {
    const PixelBlock *source;  // of the store
    const PixelBlock *destination;
    const PixelBlock *mask;  // of the whole picture; may hold nothing
};

// The band of a picture, whose frame begins in the store's row `storeRow`.
BandDocument LendBand(const DocumentShape &picture, const Band &band, int32_t storeRow,
                      const LentBlocks &blocks);

// Filters the band's own rows, some of which must be selected.
FilterOutcome FilterBand(Module *module, const FilterOrders &orders, const Watcher &watcher,
                         BandDocument *band);
