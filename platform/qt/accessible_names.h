// What a screen reader calls the widgets.
#pragma once

#include <QString>

#include "platform/internal/dialog_model.h"

namespace qt {

QString TextFrom(const std::string &macRoman);

// A title with words in it; else the label that begins the item's row, with the title; empty without either.
QString AccessibleName(const DialogRecord &dialog, const Rect &bounds, const QString &title);

}  // namespace qt
