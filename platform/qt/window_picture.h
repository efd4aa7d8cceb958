// Paints what the plug-in has drawn into a dialog's window.
#pragma once

#include <QDialog>

#include "platform/internal/port.h"

namespace qt {

// Pixel for pixel in the window's coordinates, at any screen scale.
void PaintPicture(const GrafPort &port, QDialog *window);

}  // namespace qt
