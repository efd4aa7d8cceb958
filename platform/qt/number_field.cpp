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

const ControlRecord *BarOf(const DialogWindow &shown, const QLineEdit &field) {
    return dialog_bars::BarInRow(*shown.dialog, shown.dialog->items[PlaceOf(shown, field)].bounds);
}

}  // namespace

bool qt::StepNumber(DialogWindow *shown, const QLineEdit &field, int key) {
    const ControlRecord *bar = BarOf(*shown, field);
    if (bar == nullptr || (key != Qt::Key_Up && key != Qt::Key_Down)) {
        return false;
    }
    const int16_t part = key == Qt::Key_Up ? kControlDownButtonPart : kControlUpButtonPart;
    user_actions::PostPress(&shown->input.actions, bar->bounds, {part, 0});
    return true;
}

bool qt::SettleNumber(DialogWindow *shown, const QLineEdit &field) {
    const ControlRecord *bar = BarOf(*shown, field);
    const QString number = bar == nullptr ? field.text() : QString::number(bar->value);
    if (field.text() == number) {
        return false;
    }
    user_actions::PostEdit(&shown->input.actions, static_cast<int16_t>(PlaceOf(*shown, field) + 1),
                           number.toStdString(), static_cast<size_t>(number.size()));
    return true;
}
