// The shape of a run: what each call of the driver derives from the host's record, above all from the
// document's mode.
#pragma once

#include "colors/color_modes.h"
#include "photoshop/filter_record.h"
#include "platform/types.h"
#include "plugin/plugin_state.h"

struct RunGeometry {
    int32_t sampleBytes;  // 1, 2 or 4
    int32_t width;
    int32_t height;
    int32_t planes;
    int32_t colorPlanes;               // as the document's mode has them
    int32_t extraPlanes;               // the rest: transparency, alpha, spot
    int32_t filteredPlanes;            // as the filter sees them: 3 for CMYK
    const ModeConversion *conversion;  // null if rows need none
    int32_t row;                       // the row that the host has just delivered
};

bool IsEmpty(const Rect &rect);

// Bytes in one row of all planes at the run's sample size, plus one byte per pixel for a row of the mask.
int64_t RowBufferSize(const RunGeometry &run);

// Returns filterBadMode for a mode that is not filtered, for fewer planes than the mode needs, and for pixels
// of more than 32767 bytes; filterBadParameters for an empty rectangle and for sides of more than 32767
// pixels. Images can have neither such pixels nor such sides.
OSErr GetRunGeometry(const PluginState *state, RunGeometry *run);
