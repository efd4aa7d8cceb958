// A scroll bar that moves the preview over the image in one direction.
#pragma once

#include "platform/controls.h"

struct PanBar {
    ControlRef bar;   // null when the image needs none: the offset stays 0
    int16_t offset;   // 0 to excess
    int16_t excess;   // by how much the image is larger than the preview
    int16_t preview;  // the preview's size in this direction
};

// A bar in the middle of its way, if one is needed.
PanBar MakePanBar(WindowRef window, const Rect &place, int32_t imageSize, int32_t previewSize);
void DisposePanBar(PanBar *pan);

// Follows the mouse at `point`.
void TrackPanBar(PanBar *pan, Point point);
