// The radius dialog in a window at the other end of a line, with a user's keys and clicks.
#pragma once

#include <QDialog>
#include <QScrollBar>
#include <QStyle>
#include <functional>

#include "platform/internal/dialog_model.h"
#include "tests/support/dialog_session.h"

// What a user does while the dialog waits.
using Step = std::function<void(QDialog *)>;

QPoint CenterOf(int16_t item);
QWidget *WidgetOf(QDialog *window, int16_t item);
// The steps enter through the window system, as a user's would.
void ClickAt(QDialog *window, QPoint place);
// In the window's coordinates.
QRect PlaceOf(const QScrollBar &bar, QStyle::SubControl part);
void PressKey(QDialog *window, char character);
void Perform(QDialog *window, const UserAction &action);
std::vector<Step> StepsOf(const std::vector<UserAction> &actions);

class ScreenDialog : public DialogTest {
  protected:
    static void SetUpTestSuite();

    // From then on an application exists.
    static void UseScreen();

    // Runs the next step whenever the dialog waits, and sees that the window shows what the dialog is.
    DialogOutcome RunOnScreen(const TestImage &source, float radius, const std::vector<Step> &steps);

    const TestImage image = RandomImage(250, 181, 3, 1);
};
