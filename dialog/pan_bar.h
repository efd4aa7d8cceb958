// A scroll bar that moves the preview over the image in one direction.
#pragma once

#include "platform/controls.h"

struct PanBar {
    ControlRef bar;   // null when the image fits: the offset then stays 0
    int16_t offset;   // in pixels, 0 to excess
    int16_t excess;   // by how many pixels the image is larger than the preview
    int16_t preview;  // the preview's size in this direction, in pixels
};

// Makes a bar, if one is needed, with its thumb in the middle.
PanBar MakePanBar(WindowRef window, const Rect &place, int32_t imageSize, int32_t previewSize);
void DisposePanBar(PanBar *pan);

// Tracks the mouse from `point`.
void TrackPanBar(PanBar *pan, Point point);
