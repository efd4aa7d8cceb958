// Real keys and clicks in the dialog's window give the same results as the same session from a script.
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QWheelEvent>
#include <QWindow>

#include "tests/platform/qt/screen_dialog_fixture.h"
#include "tests/support/window_sessions.h"

namespace {

using user::Click;
using user::Key;
using user::MoveThumb;
using user::Press;

int32_t hostNullEvents;

void RollWheel(QDialog *window, int16_t item, Qt::KeyboardModifiers keys) {
    const QPoint place = CenterOf(item);
    QWheelEvent notch(place, window->mapToGlobal(place), {}, {0, -120}, {}, keys, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(window->windowHandle(), &notch);
}

void Pan(QDialog *window, const Panning &panning) {
    for (const bool shift : panning.notches) {
        RollWheel(window, kPreviewItem, shift ? Qt::ShiftModifier : Qt::NoModifier);
    }
    if (panning.drags.empty()) {
        return;
    }
    const QPoint place = CenterOf(kPreviewItem);
    const QPoint first(panning.drags[0].h, panning.drags[0].v);
    const QPoint last(panning.drags[1].h, panning.drags[1].v);
    QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, place);
    // Only the last of the places counts that come while the first one is shown.
    for (const QPoint way : {first, QPoint(40, 20), last}) {
        QTest::mouseMove(window->windowHandle(), place + way);
    }
    QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, place + last);
    QTest::mouseMove(window->windowHandle(), place);
}

TEST_F(ScreenDialog, GivesWhatTheScriptGives) {
    for (const DialogSession &session : WindowSessions()) {
        SCOPED_TRACE(session.name);
        ExpectSame(RunOnScreen(image, session.radius, StepsOf(session.actions)),
                   Run(image, session.radius, session.actions));
    }
}

TEST_F(ScreenDialog, ClosingTheWindowCancels) {
    const DialogOutcome outcome = RunOnScreen(image, 3, {[](QDialog *window) { window->close(); }});
    EXPECT_EQ(outcome.result, userCanceledErr);
    EXPECT_EQ(outcome.stored, 3);
}

// Input that arrives faster than the preview is built waits its turn, in order.
TEST_F(ScreenDialog, FastHandsLoseNothing) {
    const Step wheel = [](QDialog *window) {
        for (const int16_t item :
             {kHorizontalBarItem, kHorizontalBarItem, kHorizontalBarItem, kVerticalBarItem}) {
            RollWheel(window, item, Qt::NoModifier);
        }
        ClickAt(window, CenterOf(kPlusItem));
    };
    const Step arrows = [](QDialog *window) {
        for (const Qt::Key key : {Qt::Key_Up, Qt::Key_Up, Qt::Key_Down, Qt::Key_Up}) {
            QTest::keyClick(window->windowHandle(), key);
        }
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
    struct Burst {
        Step burst;
        std::vector<UserAction> actions;  // the equivalent actions
    };
    std::vector<Burst> cases = {
        {allOfThem, various},
        {doubleClickArrow, {Press(kHorizontalBarItem, kDownArrow), Press(kHorizontalBarItem, kDownArrow)}},
        {doubleClickField, {Click(kRadiusFieldItem), user::DoubleClick(kRadiusFieldItem), Key('5')}},
        {wheel,
         {MoveThumb(kHorizontalBarItem, 78), MoveThumb(kHorizontalBarItem, 81),
          MoveThumb(kHorizontalBarItem, 84), MoveThumb(kVerticalBarItem, 53), Click(kPlusItem)}},
        {arrows,
         {Press(kRadiusBarItem, kDownArrow), Press(kRadiusBarItem, kDownArrow), Press(kRadiusBarItem, kUp),
          Press(kRadiusBarItem, kDownArrow)}},
    };
    for (const Panning &panning : Pannings()) {
        cases.push_back({[=](QDialog *window) { Pan(window, panning); }, panning.moves});
    }
    for (const Burst &c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases.data());
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

TEST_F(ScreenDialog, TheFieldShowsWhatAppliesWhenItIsLeft) {
    for (const LeftField &test : LeftFields()) {
        SCOPED_TRACE(test.shown);
        std::vector<Step> steps = StepsOf(test.typed);
        steps.emplace_back([](QDialog *window) { QTest::keyClick(window->windowHandle(), Qt::Key_Tab); });
        steps.emplace_back([&](QDialog *window) {
            const auto *field = qobject_cast<QLineEdit *>(WidgetOf(window, kRadiusFieldItem));
            EXPECT_EQ(field->text().toStdString(), test.shown);
            EXPECT_NE(window->focusWidget(), field);
            PressKey(window, kReturn);
        });
        const DialogOutcome outcome = RunOnScreen(image, 2.5f, steps);
        // A fraction stays until the number is changed.
        EXPECT_EQ(outcome.stored, test.typed.empty() ? 2.5f : std::stof(test.shown));
    }
    const auto leave = [](QDialog *window) { QTest::keyClick(window->windowHandle(), Qt::Key_Tab); };
    EXPECT_EQ(RunOnScreen(image, 3,
                          {StepsOf({Key('9')})[0], leave, StepsOf({Key('2')})[0], StepsOf({Key(kReturn)})[0]})
                  .stored,
              2);
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

}  // namespace
