// The noise of the sample picture, the same on every machine.
#pragma once

#include "samples/picture_rgb.h"

// Adds grain to every pixel, and turns pixels here and there into a random colour.
PictureRGB AddNoise(PictureRGB picture);
