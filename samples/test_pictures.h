// Clean pictures of 512 x 512 pixels to measure filters by, the same on every machine.
#pragma once

#include "samples/picture_rgb.h"

// Like a photograph: discs of all sizes that cover each other, the small ones being many, with shades and
// texture, seen through a lens that blurs a little.
PictureRGB DrawLeaves();

// A page of letters whose strokes are `stroke` pixels wide.
PictureRGB DrawPage(int stroke);

// Dark parallel lines, `width` pixels wide, that go `right` pixels to the right for `down` pixels down.
PictureRGB DrawLines(int right, int down, int width);
