#include "tests/platform/qt/screen_dialog_fixture.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QElapsedTimer>
#include <QLineEdit>
#include <QStyleOptionSlider>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <thread>

#include <unistd.h>

#include "platform/dialog_line.h"
#include "platform/qt/screen_backend.h"
#include "platform/remote/answering.h"
#include "platform/remote/line.h"

namespace {

constexpr int kPatienceMilliseconds = 20000;

void DragThumb(QDialog *window, const QScrollBar &bar, int value) {
    const QRect thumb = PlaceOf(bar, QStyle::SC_ScrollBarSlider);
    const QRect groove = PlaceOf(bar, QStyle::SC_ScrollBarGroove);
    const bool across = bar.orientation() == Qt::Horizontal;
    const int span = across ? groove.width() - thumb.width() : groove.height() - thumb.height();
    const auto position = [&](int at) {
        return QStyle::sliderPositionFromValue(bar.minimum(), bar.maximum(), at, span);
    };
    const int way = position(value) - position(bar.value());
    const QPoint end = thumb.center() + (across ? QPoint(way, 0) : QPoint(0, way));
    QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, thumb.center());
    QTest::mouseMove(window->windowHandle(), (thumb.center() + end) / 2);
    QTest::mouseMove(window->windowHandle(), end);
    QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, end);
}

void PressBar(QDialog *window, const QScrollBar &bar, TrackedPart tracked) {
    if (tracked.part == kControlIndicatorPart) {
        DragThumb(window, bar, tracked.value);
        return;
    }
    constexpr std::pair<int16_t, QStyle::SubControl> kParts[] = {
        {kUp, QStyle::SC_ScrollBarSubLine},
        {kDownArrow, QStyle::SC_ScrollBarAddLine},
        {kPageUp, QStyle::SC_ScrollBarSubPage},
        {kPageDown, QStyle::SC_ScrollBarAddPage},
    };
    for (const auto &[part, place] : kParts) {
        if (part == tracked.part) {
            ClickAt(window, PlaceOf(bar, place).center());
        }
    }
}

// The dialog runs on a thread of its own; the window, as Qt demands, on the first one.
DialogOutcome RunAndShow(const std::function<DialogOutcome()> &run) {
    int ends[2];
    EXPECT_TRUE(remote::MakeLine(ends));
    const DialogLine forModule = {kDialogLineTag, sizeof(DialogLine), ends[1]};
    SetDialogBackend(nullptr);
    UsePlatformData(kAnsweringHost, &forModule);
    DialogOutcome outcome = {};
    std::thread dialog([&] {
        outcome = run();
        UsePlatformData(0, nullptr);
        close(ends[1]);
    });
    remote::AnswerDialogs(ends[0], qt::ScreenDialogs());
    dialog.join();
    close(ends[0]);
    return outcome;
}

// Compares the middle of each of the picture's pixels, at any scale.
void ExpectPixels(const QImage &shot, const DialogState &state) {
    const Rect &drawn = state.drawn;
    const uint8_t *pixel = state.picture.data();
    int64_t wrong = 0;
    for (int y = drawn.top; y < drawn.bottom; ++y) {
        for (int x = drawn.left; x < drawn.right; ++x, pixel += 4) {
            const auto column = static_cast<int>((x + 0.5) * shot.devicePixelRatio());
            const auto row = static_cast<int>((y + 0.5) * shot.devicePixelRatio());
            wrong += (shot.pixel(column, row) & 0xFFFFFF) != (qRgb(pixel[1], pixel[2], pixel[3]) & 0xFFFFFF);
        }
    }
    EXPECT_EQ(wrong, 0);
}

// The widgets and the pixels match the model.
void ExpectShown(QDialog *window, const DialogState &state) {
    const auto *field = qobject_cast<QLineEdit *>(WidgetOf(window, kRadiusFieldItem));
    ASSERT_NE(field, nullptr);
    EXPECT_EQ(field->text().toStdString(), state.texts[kRadiusFieldItem - 1].characters);
    const auto *box = qobject_cast<QAbstractButton *>(WidgetOf(window, kPreviewCheckBoxItem));
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->isChecked(), state.values[kPreviewCheckBoxItem - 1] != 0);
    for (const int16_t item :
         std::initializer_list<int16_t>{kRadiusBarItem, kHorizontalBarItem, kVerticalBarItem}) {
        const auto index = static_cast<size_t>(item - 1);
        const auto *bar = qobject_cast<QScrollBar *>(WidgetOf(window, item));
        ASSERT_EQ(bar != nullptr, state.controls[index]);
        if (bar != nullptr) {
            EXPECT_EQ(bar->value(), state.values[index]) << "item " << item;
            EXPECT_EQ(bar->sliderPosition(), bar->value()) << "item " << item;
        }
    }
    ExpectPixels(window->grab().toImage(), state);
}

}  // namespace

QPoint CenterOf(int16_t item) {
    const Rect &bounds = model::OpenDialogs().back()->items[static_cast<size_t>(item - 1)].bounds;
    return {(bounds.left + bounds.right) / 2, (bounds.top + bounds.bottom) / 2};
}

QWidget *WidgetOf(QDialog *window, int16_t item) {
    return window->childAt(CenterOf(item));
}

void ClickAt(QDialog *window, QPoint place) {
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, place);
}

QRect PlaceOf(const QScrollBar &bar, QStyle::SubControl part) {
    QStyleOptionSlider option;
    option.initFrom(&bar);
    option.orientation = bar.orientation();
    option.minimum = bar.minimum();
    option.maximum = bar.maximum();
    option.singleStep = bar.singleStep();
    option.pageStep = bar.pageStep();
    option.sliderPosition = option.sliderValue = bar.value();
    if (bar.orientation() == Qt::Horizontal) {
        option.state |= QStyle::State_Horizontal;
    }
    return bar.style()->subControlRect(QStyle::CC_ScrollBar, &option, part, &bar).translated(bar.pos());
}

void PressKey(QDialog *window, char character) {
    constexpr std::pair<char, Qt::Key> kKeys[] = {{kReturn, Qt::Key_Return},
                                                  {kEnter, Qt::Key_Enter},
                                                  {kEscape, Qt::Key_Escape},
                                                  {kBackspace, Qt::Key_Backspace}};
    for (const auto &[code, key] : kKeys) {
        if (code == character) {
            QTest::keyClick(window->windowHandle(), key);
            return;
        }
    }
    QTest::keyClick(window->windowHandle(), character);
}

void Perform(QDialog *window, const UserAction &action) {
    if (action.event.what == keyDown) {
        PressKey(window, static_cast<char>(action.event.message));
    } else if (const auto *bar = qobject_cast<QScrollBar *>(WidgetOf(window, action.item))) {
        PressBar(window, *bar, action.tracked);
    } else {
        ClickAt(window, CenterOf(action.item));
    }
}

std::vector<Step> StepsOf(const std::vector<UserAction> &actions) {
    std::vector<Step> steps;
    for (const UserAction &action : actions) {
        steps.push_back([=](QDialog *window) { Perform(window, action); });
    }
    return steps;
}

void ScreenDialog::SetUpTestSuite() {
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
}

void ScreenDialog::UseScreen() {
    qt::ScreenDialogs().screen();
}

DialogOutcome ScreenDialog::RunOnScreen(const TestImage &source, float radius,
                                        const std::vector<Step> &steps) {
    UseScreen();
    std::vector<DialogState> states;
    size_t next = 0;
    bool stepping = false;  // a step may run the event loop itself
    QElapsedTimer sinceStep;
    sinceStep.start();
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        auto *window = qobject_cast<QDialog *>(QApplication::activeModalWidget());
        if (window != nullptr && window->isActiveWindow() && next < steps.size() && !stepping) {
            stepping = true;
            states.push_back(StateOf(*model::OpenDialogs().back()));
            ExpectShown(window, states.back());
            steps[next++](window);
            stepping = false;
            sinceStep.start();
        } else if (!stepping && sinceStep.hasExpired(kPatienceMilliseconds)) {
            ADD_FAILURE() << "the dialog does not end";
            for (QWidget *left : QApplication::topLevelWidgets()) {
                QCloseEvent close;
                QApplication::sendEvent(left, &close);
            }
        }
    });
    timer.start(1);
    DialogOutcome outcome = RunAndShow([&] { return RunOnBackend(source, radius); });
    outcome.states = std::move(states);
    return outcome;
}
