// The hybrid median filter: every pixel becomes the vector median of itself and the medians of several
// line-shaped sets of pixels through it. Edges and fine lines survive because one of the sets lies along
// them. The result is always a colour that occurs in the neighbourhood.
#pragma once

#include "toolkit/run_context.h"

// Filters an image of 1, 2, 3 or 6 bytes per pixel (grey or RGB, 8 or 16 bits) in place; any other image is
// left alone.
//
// `radius` is in pixels, rounded down, at most 6; below 1, or if it is not a number, the image is unchanged.
// With `showProgress`, every step reports progress to the host and asks whether to cancel: this filter covers
// progressStart to progressEnd out of progressTotal, reported in hundredths. Returns noErr, memFullErr, the
// error of reading or writing a line, or userCanceledErr; after a cancel, only the lines of earlier steps are
// filtered.
OSErr NewHyMedian(NamedImage *image, float radius, Boolean showProgress, const RunContext *context,
                  int32_t progressStart, int32_t progressEnd, int32_t progressTotal);
