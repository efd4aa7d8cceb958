// The names by which screen readers announce the widgets.
#pragma once

#include <QString>

#include "platform/internal/dialog_model.h"

namespace qt {

QString TextFrom(const std::string &macRoman);

// The title if it contains letters; otherwise the label that starts the item's row, followed by the title.
// Empty if there is neither.
QString AccessibleName(const DialogRecord &dialog, const Rect &bounds, const QString &title);

}  // namespace qt
