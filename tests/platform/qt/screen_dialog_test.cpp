// The dialog in a window at the other end of a line: real keys and clicks give the same results as the same
// session from a script.
#include <QAbstractButton>
#include <QApplication>
#include <QCloseEvent>
#include <QDialog>
#include <QElapsedTimer>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QStyleOptionSlider>
#include <QTest>
#include <QTimer>
#include <QWheelEvent>
#include <QWindow>
#include <functional>
#include <thread>

#include <unistd.h>

#include "platform/dialog_line.h"
#include "platform/qt/screen_backend.h"
#include "platform/remote/answering.h"
#include "platform/remote/line.h"
#include "tests/support/dialog_session.h"

namespace {

using user::Click;
using user::Event;
using user::Key;
using user::MoveThumb;
using user::Press;
using Step = std::function<void(QDialog *)>;

QPoint CenterOf(int16_t item) {
    const Rect &bounds = model::OpenDialogs().back()->items[static_cast<size_t>(item - 1)].bounds;
    return {(bounds.left + bounds.right) / 2, (bounds.top + bounds.bottom) / 2};
}

QWidget *WidgetOf(QDialog *window, int16_t item) {
    return window->childAt(CenterOf(item));
}

// Events enter through the window system, as a user's would.
void ClickAt(QDialog *window, QPoint place) {
    QTest::mouseClick(window->windowHandle(), Qt::LeftButton, {}, place);
}

// In the window's coordinates.
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

constexpr int kPatienceMilliseconds = 20000;

int32_t hostNullEvents;

class ScreenDialog : public DialogTest {
  protected:
    static void SetUpTestSuite() { setenv("QT_QPA_PLATFORM", "offscreen", 0); }

    // From then on an application exists.
    static void UseScreen() { qt::ScreenDialogs().screen(); }

    // The dialog runs on a thread of its own; the window, as Qt demands, on the first one.
    DialogOutcome RunOverLine(const TestImage &source, float radius) {
        int ends[2];
        EXPECT_TRUE(remote::MakeLine(ends));
        const DialogLine forModule = {kDialogLineTag, sizeof(DialogLine), ends[1]};
        SetDialogBackend(nullptr);
        UsePlatformData(kAnsweringHost, &forModule);
        DialogOutcome outcome = {};
        std::thread dialog([&] {
            outcome = RunOnBackend(source, radius);
            UsePlatformData(0, nullptr);
            close(ends[1]);
        });
        remote::AnswerDialogs(ends[0], qt::ScreenDialogs());
        dialog.join();
        close(ends[0]);
        return outcome;
    }

    // Runs the next step whenever the dialog waits.
    DialogOutcome RunOnScreen(const TestImage &source, float radius, const std::vector<Step> &steps) {
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
        DialogOutcome outcome = RunOverLine(source, radius);
        outcome.states = std::move(states);
        return outcome;
    }

    // The widgets and the pixels match the model.
    static void ExpectShown(QDialog *window, const DialogState &state) {
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

    // Compares the middle of each of the picture's pixels, at any scale.
    static void ExpectPixels(const QImage &shot, const DialogState &state) {
        const Rect &drawn = state.drawn;
        const uint8_t *pixel = state.picture.data();
        int64_t wrong = 0;
        for (int y = drawn.top; y < drawn.bottom; ++y) {
            for (int x = drawn.left; x < drawn.right; ++x, pixel += 4) {
                const auto column = static_cast<int>((x + 0.5) * shot.devicePixelRatio());
                const auto row = static_cast<int>((y + 0.5) * shot.devicePixelRatio());
                wrong +=
                    (shot.pixel(column, row) & 0xFFFFFF) != (qRgb(pixel[1], pixel[2], pixel[3]) & 0xFFFFFF);
            }
        }
        EXPECT_EQ(wrong, 0);
    }

    const TestImage image = RandomImage(250, 181, 3, 1);
};

TEST_F(ScreenDialog, GivesWhatTheScriptGives) {
    const struct {
        float radius;
        std::vector<UserAction> actions;
    } sessions[] = {
        {2.5f, {Click(kOKItem)}},
        {2.5f, {Press(kRadiusBarItem, kDownArrow), Click(kOKItem)}},
        {2.5f,
         {Press(kRadiusBarItem, kUp), Press(kRadiusBarItem, kPageDown), Press(kRadiusBarItem, kPageDown),
          Press(kRadiusBarItem, kPageUp), Key(kReturn)}},
        {2, {MoveThumb(kRadiusBarItem, 5), Key(kEnter)}},
        {2.5f, {Click(kPlusItem), Click(kOKItem)}},
        {3, {Key('1'), Key('2'), Click(kOKItem)}},
        {3, {Key('-'), Key('3'), Click(kOKItem)}},
        {3, {Key(kBackspace), Click(kOKItem)}},
        {3, {Key('4'), Key('2'), Click(kMinusItem), Key('2'), Key(kReturn)}},
        {3, {Click(kRadiusFieldItem), Key(kReturn)}},
        {3, {Click(kPreviewCheckBoxItem), Key('5'), Click(kOKItem)}},
        {3, {Click(kPreviewCheckBoxItem), Key(' '), Click(kOKItem)}},
        {3,
         {Click(kRadiusFieldItem), Click(kPreviewCheckBoxItem), Key('1'), Key(kBackspace), Click(kOKItem)}},
        {3,
         {Click(4), Click(kPreviewItem), Click(kPreviewCheckBoxItem), Click(kPreviewCheckBoxItem),
          Click(kOKItem)}},
        {1,
         {Press(kHorizontalBarItem, kPageDown), Press(kHorizontalBarItem, kPageDown),
          Press(kVerticalBarItem, kPageDown), Press(kVerticalBarItem, kPageDown), Click(kOKItem)}},
        {1,
         {Press(kHorizontalBarItem, kUp), Press(kVerticalBarItem, kDownArrow),
          Press(kHorizontalBarItem, kPageUp), Click(kOKItem)}},
        {1, {MoveThumb(kHorizontalBarItem, 150), Press(kHorizontalBarItem, kDownArrow), Click(kOKItem)}},
        {1,
         {MoveThumb(kHorizontalBarItem, 150), Press(kHorizontalBarItem, kUp), MoveThumb(kVerticalBarItem, 0),
          Click(kOKItem)}},
        {3, {Key('5'), Key(kEscape)}},
        {3, {Key('5'), Click(kCancelItem)}},
    };
    for (const auto &session : sessions) {
        SCOPED_TRACE(testing::Message() << "session " << &session - sessions);
        const DialogOutcome scripted = Run(image, session.radius, session.actions);
        const DialogOutcome shown = RunOnScreen(image, session.radius, StepsOf(session.actions));
        EXPECT_EQ(shown.result, scripted.result);
        EXPECT_EQ(shown.stored, scripted.stored);
        EXPECT_EQ(shown.rebuilds, scripted.rebuilds);
        ASSERT_EQ(shown.states.size(), scripted.states.size());
        for (size_t i = 0; i < shown.states.size(); ++i) {
            EXPECT_EQ(shown.states[i].values, scripted.states[i].values) << "before action " << i;
            EXPECT_EQ(shown.states[i].picture, scripted.states[i].picture) << "before action " << i;
            EXPECT_EQ(shown.states[i].texts[kRadiusFieldItem - 1].characters,
                      scripted.states[i].texts[kRadiusFieldItem - 1].characters);
        }
    }
}

TEST_F(ScreenDialog, ClosingTheWindowCancels) {
    const DialogOutcome outcome = RunOnScreen(image, 3, {[](QDialog *window) { window->close(); }});
    EXPECT_EQ(outcome.result, userCanceledErr);
    EXPECT_EQ(outcome.stored, 3);
}

TEST_F(ScreenDialog, StandsUnderItsTitleWhereItIsCentered) {
    // Placed low enough for its frame to be on the screen even at double scale.
    std::vector<uint8_t> low = DialogTemplate();
    PutShort(low.data() + 4, 400);
    faults::RemoveResources();
    faults::AddResource(kDialogType, kRadiusDialogID, low);
    faults::AddResource(kItemListType, kRadiusDialogID, DialogItemList());
    const Step look = [](QDialog *window) {
        const QSize screen = window->screen()->size();
        EXPECT_EQ(window->windowTitle(), "Hybrid Median");
        EXPECT_EQ(window->geometry(),
                  QRect((screen.width() - 380) / 2, (screen.height() - 400 - 20) / 3 + 20, 380, 400));
        PressKey(window, kEscape);
    };
    RunOnScreen(image, 3, {look});
}

// Input that arrives faster than the preview is built waits its turn, in order.
TEST_F(ScreenDialog, FastHandsLoseNothing) {
    const Step wheel = [](QDialog *window) {
        for (const int16_t item :
             {kHorizontalBarItem, kHorizontalBarItem, kHorizontalBarItem, kVerticalBarItem}) {
            const QPoint place = CenterOf(item);
            QWheelEvent tick(place, window->mapToGlobal(place), {}, {0, -120}, {}, {}, Qt::NoScrollPhase,
                             false);
            QCoreApplication::sendEvent(window->windowHandle(), &tick);
        }
        ClickAt(window, CenterOf(kPlusItem));
    };
    const Step doubleClickField = [](QDialog *window) {
        QTest::mouseDClick(window->windowHandle(), Qt::LeftButton, {}, CenterOf(kRadiusFieldItem));
        PressKey(window, '5');
    };
    const Step doubleClickArrow = [](QDialog *window) {
        const auto *bar = qobject_cast<QScrollBar *>(WidgetOf(window, kHorizontalBarItem));
        QTest::mouseDClick(window->windowHandle(), Qt::LeftButton, {},
                           PlaceOf(*bar, QStyle::SC_ScrollBarAddLine).center());
    };
    const std::vector<UserAction> various = {
        Key('4'), Key('2'), Click(kMinusItem), Key('2'), Press(kHorizontalBarItem, kUp), Click(kPlusItem)};
    const Step allOfThem = [&](QDialog *window) {
        for (const UserAction &action : various) {
            Perform(window, action);
        }
    };
    const struct {
        Step burst;
        std::vector<UserAction> actions;  // the equivalent actions
    } cases[] = {
        {allOfThem, various},
        {doubleClickArrow, {Press(kHorizontalBarItem, kDownArrow), Press(kHorizontalBarItem, kDownArrow)}},
        {doubleClickField, {Click(kRadiusFieldItem), user::DoubleClick(kRadiusFieldItem), Key('5')}},
        {wheel,
         {MoveThumb(kHorizontalBarItem, 78), MoveThumb(kHorizontalBarItem, 81),
          MoveThumb(kHorizontalBarItem, 84), MoveThumb(kVerticalBarItem, 53), Click(kPlusItem)}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        std::vector<UserAction> actions = c.actions;
        actions.push_back(Key(kReturn));
        const DialogOutcome slow = Run(image, 3, actions);
        const DialogOutcome fast = RunOnScreen(image, 3, {c.burst, StepsOf({Key(kReturn)})[0]});
        EXPECT_EQ(fast.stored, slow.stored);
        EXPECT_EQ(fast.rebuilds, slow.rebuilds);
        EXPECT_EQ(fast.Field(), slow.Field());
        EXPECT_EQ(fast.Last().values, slow.Last().values);
    }
}

TEST_F(ScreenDialog, KeysMeanTheSameWhereverTheFocusIs) {
    const struct {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
        OSErr result;
    } ends[] = {
        {Qt::Key_Return, Qt::NoModifier, noErr},
        {Qt::Key_Enter, Qt::KeypadModifier, noErr},
        {Qt::Key_Escape, Qt::NoModifier, userCanceledErr},
        {Qt::Key_Period, Qt::ControlModifier, userCanceledErr},
    };
    constexpr int kStops = 6;
    for (int tabs = 0; tabs < kStops; ++tabs) {
        const Step go = [=](QDialog *window) {
            for (int i = 0; i < tabs; ++i) {
                QTest::keyClick(window->windowHandle(), Qt::Key_Tab);
            }
        };
        for (const auto &end : ends) {
            SCOPED_TRACE(testing::Message() << tabs << " tabs, key " << end.key);
            const Step type = [&](QDialog *window) {
                go(window);
                PressKey(window, '5');
            };
            const Step finish = [&](QDialog *window) {
                go(window);
                EXPECT_TRUE(qobject_cast<QPushButton *>(WidgetOf(window, kOKItem))->isDefault());
                // On some desktops Return presses a focused button.
                for (QPushButton *button : window->findChildren<QPushButton *>()) {
                    button->setAutoDefault(true);
                }
                QTest::keyClick(window->windowHandle(), end.key, end.modifiers);
            };
            const DialogOutcome outcome = RunOnScreen(image, 3, {type, finish});
            EXPECT_EQ(outcome.Field(), "5");
            EXPECT_EQ(outcome.result, end.result);
        }
    }
    // But space presses the focused widget.
    const Step press = [](QDialog *window) {
        QTest::keyClick(window->windowHandle(), Qt::Key_Backtab);
        QTest::keyClick(window->windowHandle(), Qt::Key_Space);
    };
    EXPECT_EQ(RunOnScreen(image, 3, {press, StepsOf({Click(kOKItem)})[0]}).Value(kPreviewCheckBoxItem), 0);
}

TEST_F(ScreenDialog, AHeldArrowStepsOnce) {
    const Step press = [](QDialog *window) {
        const auto *bar = qobject_cast<QScrollBar *>(WidgetOf(window, kHorizontalBarItem));
        QTest::mousePress(window->windowHandle(), Qt::LeftButton, {},
                          PlaceOf(*bar, QStyle::SC_ScrollBarAddLine).center());
    };
    // Qt's auto-repeat would start after half a second.
    const Step wait = [](QDialog *) { QTest::qWait(700); };
    const Step release = [](QDialog *window) {
        QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, CenterOf(kHorizontalBarItem));
    };
    const DialogOutcome outcome = RunOnScreen(image, 1, {press, wait, release, StepsOf({Click(kOKItem)})[0]});
    EXPECT_EQ(outcome.Value(kHorizontalBarItem), 76);
    EXPECT_EQ(outcome.rebuilds, 2);
}

TEST_F(ScreenDialog, TellsTheHostWhenNothingHappens) {
    hostNullEvents = 0;
    processEvent = [](EventRecord *event) { hostNullEvents += event->what == nullEvent; };
    RunOnScreen(image, 1,
                {[](QDialog *) { QTest::qWait(200); }, [](QDialog *) { QTest::qWait(200); },
                 StepsOf({Click(kOKItem)})[0]});
    EXPECT_GE(hostNullEvents, 2);
}

TEST_F(ScreenDialog, TabGoesThroughTheRowsAndEveryWidgetHasAName) {
    std::vector<std::string> order;
    std::vector<std::string> bars;
    const Step look = [&](QDialog *window) {
        for (int i = 0; i < 6; ++i) {
            order.push_back(window->focusWidget()->accessibleName().toStdString());
            QTest::keyClick(window->windowHandle(), Qt::Key_Tab);
        }
        for (const QWidget *widget : window->findChildren<QWidget *>()) {
            EXPECT_FALSE(widget->accessibleName().isEmpty()) << widget->metaObject()->className();
        }
        for (const QScrollBar *bar : window->findChildren<QScrollBar *>()) {
            bars.push_back(bar->accessibleName().toStdString());
        }
    };
    RunOnScreen(image, 1, {look, StepsOf({Click(kOKItem)})[0]});
    EXPECT_EQ(order,
              (std::vector<std::string>{"Radius", "Radius \u2013", "Radius +", "Cancel", "OK", "Preview"}));
    EXPECT_EQ(bars, (std::vector<std::string>{"Horizontal position", "Vertical position", "Radius"}));
}

// Sky over a field with a wire fence, all of it noisy.
TestImage Photograph() {
    TestImage photo = RandomImage(600, 450, 3, 9);
    for (int y = 0; y < photo.height; ++y) {
        for (int x = 0; x < photo.width; ++x) {
            const bool wire = (x + y) % 60 < 2 || x % 80 < 2;
            const int light = 160 - y / 4;
            const int color[] = {wire ? 30 : light - 40 + x / 12, wire ? 30 : light,
                                 wire      ? 35
                                 : y < 220 ? light + 60
                                           : light - 60};
            for (int c = 0; c < 3; ++c) {
                uint8_t *sample = &photo.bytes[static_cast<size_t>((y * photo.width + x) * 3 + c)];
                const int noise = *sample < 24 ? 200 - 16 * *sample : *sample / 8 - 16;
                *sample = static_cast<uint8_t>(std::clamp(color[c] + noise, 0, 255));
            }
        }
    }
    return photo;
}

QPalette DarkPalette() {
    QPalette dark(QColor(50, 50, 50));
    dark.setColor(QPalette::Base, QColor(30, 30, 30));
    return dark;
}

void ExpectCleanLayout(QDialog *window) {
    const QList<QWidget *> widgets = window->findChildren<QWidget *>(Qt::FindDirectChildrenOnly);
    const QRect inside = window->rect().adjusted(8, 8, -8, -8);
    const Rect &preview = model::OpenDialogs().back()->window.port.drawn;
    const QRect picture(QPoint(preview.left, preview.top), QPoint(preview.right - 1, preview.bottom - 1));
    for (const QWidget *widget : widgets) {
        SCOPED_TRACE(widget->accessibleName().toStdString());
        EXPECT_TRUE(inside.contains(widget->geometry()));
        EXPECT_FALSE(picture.intersects(widget->geometry()));
        for (const QWidget *other : widgets) {
            EXPECT_TRUE(widget == other || !widget->geometry().intersects(other->geometry()));
        }
        if (qobject_cast<const QLabel *>(widget) != nullptr) {
            EXPECT_GE(widget->width(), widget->sizeHint().width());
            EXPECT_GE(widget->height(), widget->sizeHint().height());
        }
    }
}

// Everything fits its place, nothing overlaps, and the theme's colours are kept. Pictures are saved in the
// folder $HYMEDIAN_SCREENSHOTS.
TEST_F(ScreenDialog, LooksRightInLightAndDark) {
    InstallItems(DialogItemList());
    UseScreen();
    const QPalette usual = QApplication::palette();
    const std::pair<const char *, QPalette> themes[] = {{"/light.png", usual}, {"/dark.png", DarkPalette()}};
    for (const auto &[name, palette] : themes) {
        SCOPED_TRACE(name);
        QApplication::setPalette(palette);
        const Step look = [&, file = name, background = palette.color(QPalette::Window)](QDialog *window) {
            ExpectCleanLayout(window);
            const QImage shot = window->grab().toImage();
            EXPECT_EQ(shot.pixelColor(2, 2), background);
            if (const char *place = std::getenv("HYMEDIAN_SCREENSHOTS"); place != nullptr) {
                EXPECT_TRUE(shot.save(QString(place) + file));
            }
        };
        RunOnScreen(Photograph(), 4, {look, StepsOf({Click(kOKItem)})[0]});
    }
    QApplication::setPalette(usual);
}

}  // namespace
