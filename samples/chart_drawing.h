// The test chart: what a noise filter finds hard to keep.
#pragma once

#include "samples/picture_rgb.h"

// 640 x 480: a sky of smooth gradients over flat patches, fans of lines one pixel wide, rings, checkers and
// small marks. Drawn in whole numbers, so that every machine draws the same.
PictureRGB DrawChart();
