// The shape of a run: what a call of the driver derives from the host's record, the document's mode first of
// all.
#pragma once

#include "photoshop/filter_record.h"
#include "platform/types.h"
#include "plugin/plugin_state.h"

// Turns the colour planes of a row into RGB and back, in place.
struct ModeConversion {
    void (*toRGB)(void *row, int32_t width);
    void (*fromRGB)(void *row, int32_t width);
};

struct RunGeometry {
    int32_t sampleBytes;  // 1, 2 or 4
    int32_t width;
    int32_t height;
    int32_t planes;
    int32_t colorPlanes;               // what the document's mode has
    int32_t extraPlanes;               // the rest: transparency, alpha, spot
    int32_t filteredPlanes;            // what the filter sees of the colour planes: 3 for CMYK
    const ModeConversion *conversion;  // null where rows need none
    int32_t row;                       // the one that the host has just delivered
};

bool IsEmpty(const Rect &rect);

// Bytes of one row of all planes at the run's sample size, plus one byte per pixel for a row of the mask.
int64_t RowBufferSize(const RunGeometry &run);

// Returns filterBadMode for a mode without a colour plane count, with fewer planes than it needs, or with
// pixels of more than 32767 bytes; filterBadParameters for an empty rectangle and for a side of more than
// 32767 pixels. No image can have such pixels or sides.
OSErr GetRunGeometry(const PluginState *state, RunGeometry *run);
