// The hybrid median filter: every pixel becomes the vector median of the medians of several line-shaped sets
// of pixels through it, and of itself. Edges and fine lines stay, because one set lies along them. The result
// is always one of the colours around.
#pragma once

#include "toolkit/run_context.h"

// Filters an image of 1, 2, 3 or 6 bytes per pixel (grey or RGB, 8 or 16 bits) in place; any other is left
// alone.
//
// `radius` counts whole pixels, at most 6; below 1 (and when it is not a number) the image stays as it is.
// With `showProgress` the host is told and asked once per line: this filter covers progressStart to
// progressEnd out of progressTotal, in hundredths. Returns noErr, memFullErr, or userCanceledErr; after a
// cancel the lines of earlier steps are filtered and the others are not.
OSErr NewHyMedian(NamedImage *image, float radius, Boolean showProgress, const RunContext *context,
                  int32_t progressStart, int32_t progressEnd, int32_t progressTotal);
