// The scroll bars of a dialog that show or move something else in it: a field's number, or a picture.
#pragma once

#include <vector>

#include "platform/internal/dialog_model.h"

namespace dialog_bars {

// The one in the row of a field, whose number it shows; null for a field without one.
const ControlRecord *BarInRow(const DialogRecord &dialog, const Rect &field);

// The item in the drawn part of the window, and the bars that begin where it does.
struct PannedPicture {
    Rect place;
    const ControlRecord *across, *upright;  // null where all of it is in view
};
PannedPicture PictureOf(const DialogRecord &dialog);
// Whether a mouse there could take hold of it.
bool Pans(const PannedPicture &picture, Point mouse);

// The picture in the user's hand.
struct Grip {
    bool held = false;
    Point mouse;  // where it was taken, and the bars' values then
    int across = 0, upright = 0;
};
Grip Take(const PannedPicture &picture, Point mouse);

// A bar that moves, and where to.
struct Move {
    const ControlRecord *bar;
    int16_t value;
};
using Moves = std::vector<Move>;

// When the hand has gone there.
Moves Drag(const PannedPicture &picture, const Grip &grip, Point mouse);
// By so many pixels.
Moves Scroll(const PannedPicture &picture, double across, double down);
// By so many notches of a wheel.
Moves Roll(const PannedPicture &picture, double across, double down);

}  // namespace dialog_bars
