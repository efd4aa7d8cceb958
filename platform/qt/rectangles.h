// Converts the dialog's rectangles to Qt's.
#pragma once

#include <QRect>

#include "platform/types.h"

namespace qt {

inline QRect QRectOf(const Rect &rect) {
    return QRect(QPoint(rect.left, rect.top), QPoint(rect.right - 1, rect.bottom - 1));
}

}  // namespace qt
