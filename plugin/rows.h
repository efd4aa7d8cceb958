// Rows of interleaved samples as the host delivers them: takes the extra planes out and puts them back.
//
// Samples are 1, 2 or 4 bytes (float). Rows need no alignment.
#pragma once

#include <cstdint>

#include "plugin/run_geometry.h"

struct RowCalls {
    // Moves the extra planes of `row` into `extra` and packs the colour planes, in place. Pixels whose first
    // extra sample is zero become white. Returns true if there were any.
    bool (*splitExtraPlanes)(const RunGeometry &run, void *row, void *extra);
    // The reverse, in place.
    void (*mergeExtraPlanes)(const RunGeometry &run, void *row, const void *extra);
    // Makes one selection byte per pixel from the first extra plane.
    void (*selectionFromExtraPlane)(const RunGeometry &run, const void *extra, uint8_t *selection);
};

// `sampleBytes` is 1, 2 or 4.
const RowCalls &RowCallsFor(int32_t sampleBytes);

// Between the host's 0..1 and the 0..255 that floats have in the working image.
void ScaleFloatsIn(void *row, int64_t count);
void ScaleFloatsOut(void *row, int64_t count);
