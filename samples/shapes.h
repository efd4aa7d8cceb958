// Shapes without smoothing, in whole numbers, so that every machine draws the same. What lies outside is cut
// off.
#pragma once

#include "samples/picture_rgb.h"

struct Box {
    int left, top, right, bottom;
};

inline constexpr int kMarkCount = 8;

// The colour that is part / whole of the way from one to the other.
Pixel Mix(Pixel from, Pixel to, int part, int whole);

void Put(PictureRGB *picture, int x, int y, Pixel color);
void Fill(PictureRGB *picture, const Box &box, Pixel color);
// Bresenham's line, one pixel wide, both ends included.
void Line(PictureRGB *picture, int x0, int y0, int x1, int y1, Pixel color);
void Disc(PictureRGB *picture, int centerX, int centerY, int radius, Pixel color);
// Something like a letter, of five by seven squares of `scale` pixels.
void Mark(PictureRGB *picture, int left, int top, int scale, int index, Pixel color);
