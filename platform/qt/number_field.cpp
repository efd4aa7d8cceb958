#include "platform/qt/number_field.h"

#include <algorithm>

#include "platform/qt/dialog_window.h"

namespace {

using qt::DialogWindow;

// Of an item, from 0.
size_t PlaceOf(const DialogWindow &shown, const QLineEdit &field) {
    return static_cast<size_t>(std::find(shown.items.begin(), shown.items.end(), &field) -
                               shown.items.begin());
}

// Null for a field without one.
const ControlRecord *BarInRow(const DialogWindow &shown, const QLineEdit &field) {
    const Rect &row = shown.dialog->items[PlaceOf(shown, field)].bounds;
    const auto &controls = shown.dialog->controls;
    const auto found = std::find_if(controls.begin(), controls.end(), [&](const auto &control) {
        return control->definition == scrollBarProc && control->visible && control->bounds.top < row.bottom &&
               row.top < control->bounds.bottom;
    });
    return found == controls.end() ? nullptr : found->get();
}

}  // namespace

bool qt::StepNumber(DialogWindow *shown, const QLineEdit &field, int key) {
    const ControlRecord *bar = BarInRow(*shown, field);
    if (bar == nullptr || (key != Qt::Key_Up && key != Qt::Key_Down)) {
        return false;
    }
    const int16_t part = key == Qt::Key_Up ? kControlDownButtonPart : kControlUpButtonPart;
    PostPress(&shown->input, bar->bounds, {part, 0});
    return true;
}

bool qt::SettleNumber(DialogWindow *shown, const QLineEdit &field) {
    const ControlRecord *bar = BarInRow(*shown, field);
    const QString number = bar == nullptr ? field.text() : QString::number(bar->value);
    if (field.text() == number) {
        return false;
    }
    PostEdit(&shown->input, static_cast<int16_t>(PlaceOf(*shown, field) + 1), number,
             static_cast<int>(number.size()));
    return true;
}
