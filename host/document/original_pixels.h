// The filter chooses one of the pixels around each pixel, but bits are lost on the way to it and back, where
// samples are scaled or colours converted. This finds the chosen pixels again and stores them as they were.
#pragma once

#include <functional>

#include "host/document/document.h"

// What was filtered: `core` holds results, and the filter saw `shown`, whose edges it repeats. It looked at
// most `radius` pixels far.
struct FilteredPart {
    VRect core;
    VRect shown;
    int32_t radius;
};

// Replaces each colour of the destination's core by the nearest one of the source, among those that the
// filter looks at, which becomes just this result on its way through the filter; where none does, the result
// stays. Colours that are fully transparent or not finite come back as they were, and nowhere else. False if
// cancelled in between.
bool RestoreOriginals(const FilteredPart &part, const std::function<bool()> &cancelled, Document *document);
