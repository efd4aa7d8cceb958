// Drags and turns of the wheel over a dialog's picture: they move the bars beside and below it.
#pragma once

class QEvent;

namespace qt {

struct DialogWindow;

// True if an event of the window was for its picture.
bool PanPicture(DialogWindow *shown, QEvent *event);

}  // namespace qt
