// A text field in whose row a scroll bar shows the same number.
#pragma once

#include <QLineEdit>

namespace qt {

struct DialogWindow;

// The bar's number moves by one for an arrow key in the field, and the dialog shows it there. False for other
// keys and fields.
bool StepNumber(DialogWindow *shown, const QLineEdit &field, int key);

// A field that the user leaves shows the number that applies, whatever was typed. True if that is another.
bool SettleNumber(DialogWindow *shown, const QLineEdit &field);

}  // namespace qt
