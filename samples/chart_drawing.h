// The test chart: what a noise filter finds hard to keep.
#pragma once

#include "samples/picture_rgb.h"

// 640 x 480: a sky of smooth gradients, a fan of lines one pixel wide, rings, checkers, small marks and flat
// patches. Drawn in whole numbers, so that every machine draws the same chart.
PictureRGB DrawChart();
