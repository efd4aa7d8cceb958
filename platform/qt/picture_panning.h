// Drags and turns of the wheel over a dialog's picture: they move the bars beside and below it.
#pragma once

#include <QPoint>

class QEvent;

namespace qt {

struct DialogWindow;

// The picture in the user's hand.
struct PictureGrip {
    bool held = false;
    QPoint place;  // where it was taken, and the bars' values then
    int across = 0, upright = 0;
};

// True if an event of the window was for its picture.
bool PanPicture(DialogWindow *shown, QEvent *event);

}  // namespace qt
