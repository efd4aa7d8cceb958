// The test chart: what a noise filter finds hard to keep.
#pragma once

#include "samples/picture_rgb.h"

// 640 x 480: a sky of smooth gradients, lines one pixel wide in the directions of the filter's sets and a fan
// of lines two pixels wide, rings, checkers, small marks and flat patches. Drawn in whole numbers, so that
// every machine draws the same chart.
PictureRGB DrawChart();
