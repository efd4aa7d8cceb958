// The noise of the sample picture, the same on every machine.
#pragma once

#include "samples/picture_rgb.h"

// Grain on every pixel, and pixels of a random colour here and there.
PictureRGB AddNoise(PictureRGB picture);
