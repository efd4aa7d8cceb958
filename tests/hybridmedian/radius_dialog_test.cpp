// User actions in the radius dialog, and their effects.
#include <algorithm>
#include <iterator>
#include <limits>

#include "dialog/proxy_draw.h"
#include "tests/support/dialog_session.h"

namespace {

using user::Click;
using user::DoubleClick;
using user::Event;
using user::Key;
using user::MoveThumb;
using user::Press;
using Actions = std::vector<UserAction>;

Actions Typed(const std::string &text) {
    Actions actions;
    std::transform(text.begin(), text.end(), std::back_inserter(actions), [](char c) { return Key(c); });
    return actions;
}

Actions Then(Actions actions, const Actions &more) {
    actions.insert(actions.end(), more.begin(), more.end());
    return actions;
}

class RadiusDialog : public DialogTest {
  protected:
    const TestImage image = RandomImage(250, 181, 3, 1);
};

TEST_F(RadiusDialog, SessionsGiveTheRadius) {
    InstallDialog(20, 16);
    const float kNaN = std::numeric_limits<float>::quiet_NaN();
    const struct {
        float stored;
        Actions actions;
        float radius;
        const char *field;
    } cases[] = {
        {2.5f, {}, 2.5f, "2"},
        {0, {}, 1, "1"},
        {-7, {}, 1, "1"},
        {9, {}, 6, "6"},
        {1e30f, {}, 6, "6"},
        {kNaN, {}, 1, "1"},
        {2.5f, {Press(kRadiusBarItem, kDownArrow)}, 3.5f, "3"},
        {2.5f, {Press(kRadiusBarItem, kPageDown)}, 3.5f, "3"},
        {2.5f, {Press(kRadiusBarItem, kUp)}, 1.5f, "1"},
        {1.5f, {Press(kRadiusBarItem, kPageUp)}, 1, "1"},
        {5.5f, {Press(kRadiusBarItem, kDownArrow)}, 6, "6"},
        {2.5f, {Press(kRadiusBarItem, 0)}, 2, "2"},
        {2.5f, {MoveThumb(kRadiusBarItem, 5)}, 5, "5"},
        {2.5f, {MoveThumb(kRadiusBarItem, 99)}, 6, "6"},
        {2.5f, {Click(kPlusItem)}, 3, "3"},
        {2.5f, {Click(kMinusItem)}, 1, "1"},
        {5.5f, {Click(kPlusItem)}, 6, "6"},
        {1.5f, {Click(kMinusItem)}, 1, "1"},
        {6, {Click(kPlusItem)}, 6, "6"},
        {1, {Click(kMinusItem)}, 1, "1"},
        {3, Typed("12"), 6, "12"},
        {3, Typed("-3"), 1, "-3"},
        {3, Typed("abc"), 1, "abc"},
        {3, Typed("0"), 1, "0"},
        {3, Typed("4"), 4, "4"},
        {3, Typed(" 5mm"), 5, " 5mm"},
        {3, Typed("99999999999"), 6, "99999999999"},
        {3, Typed("-99999999999"), 1, "-99999999999"},
        {3, {Key(kBackspace)}, 1, ""},
        {3, Then(Typed("42"), {Key(kBackspace)}), 4, "4"},
        {3, Typed("42"), 6, "42"},
        // Each step selects the text, so that typing replaces it.
        {3, Then(Typed("42"), {Click(kMinusItem), Key('2')}), 2, "2"},
        {3, {Press(kRadiusBarItem, kDownArrow), Key('2')}, 2, "2"},
        // A click in the field reads it, which drops the fraction.
        {2.5f, {Click(kRadiusFieldItem)}, 2, "2"},
        {2.5f, {Click(kRadiusFieldItem), Key('1')}, 6, "21"},
        {2.5f, {DoubleClick(kRadiusFieldItem), Key('5')}, 5, "5"},
        {2.5f, {Click(kPreviewCheckBoxItem), Click(kPreviewCheckBoxItem)}, 2.5f, "2"},
        // Disabled items, the picture, and other keys.
        {2.5f, {Click(4), Click(kPreviewItem), Click(10), Click(13), Event(nullEvent)}, 2.5f, "2"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        const DialogOutcome outcome = Run(image, c.stored, Then(c.actions, {Click(kOKItem)}));
        EXPECT_EQ(outcome.result, noErr);
        EXPECT_EQ(outcome.stored, c.radius);
        EXPECT_EQ(outcome.Field(), c.field);
        EXPECT_EQ(outcome.Value(kRadiusBarItem), static_cast<int16_t>(c.radius));
    }
}

TEST_F(RadiusDialog, SessionsPan) {
    const struct {
        int16_t width, height;
        Actions actions;
        int16_t across, down;
    } cases[] = {
        {250, 181, {}, 75, 50},
        {250,
         181,
         {Press(kHorizontalBarItem, kUp), Press(kVerticalBarItem, kUp), Press(kVerticalBarItem, kUp)},
         74,
         48},
        {250, 181, {Press(kHorizontalBarItem, kDownArrow), Press(kVerticalBarItem, kDownArrow)}, 76, 51},
        {250, 181, {Press(kHorizontalBarItem, kPageUp), Press(kVerticalBarItem, kPageUp)}, 25, 10},
        {250,
         181,
         {Press(kHorizontalBarItem, kPageUp), Press(kHorizontalBarItem, kPageUp),
          Press(kVerticalBarItem, kPageUp), Press(kVerticalBarItem, kPageUp)},
         0,
         0},
        {250,
         181,
         {Press(kHorizontalBarItem, kPageDown), Press(kHorizontalBarItem, kPageDown),
          Press(kVerticalBarItem, kPageDown), Press(kVerticalBarItem, kPageDown)},
         149,
         100},
        {250, 181, {MoveThumb(kHorizontalBarItem, 150), MoveThumb(kVerticalBarItem, 101)}, 150, 101},
        {250, 181, {MoveThumb(kHorizontalBarItem, 150), Press(kHorizontalBarItem, kDownArrow)}, 150, 50},
        {250, 181, {MoveThumb(kHorizontalBarItem, 150), Press(kHorizontalBarItem, kPageDown)}, 149, 50},
        {250, 181, {MoveThumb(kHorizontalBarItem, 150), Press(kHorizontalBarItem, kUp)}, 149, 50},
        {250, 181, {MoveThumb(kHorizontalBarItem, 149), Press(kHorizontalBarItem, kDownArrow)}, 149, 50},
        {250,
         181,
         {MoveThumb(kHorizontalBarItem, 0), Press(kHorizontalBarItem, kUp), Press(kHorizontalBarItem, 0)},
         0,
         50},
        // One pixel larger than the preview: only the thumb moves it.
        {101,
         81,
         {Press(kHorizontalBarItem, kDownArrow), Press(kVerticalBarItem, kDownArrow),
          Press(kHorizontalBarItem, kPageDown), Press(kVerticalBarItem, kPageDown)},
         0,
         0},
        {101, 81, {MoveThumb(kHorizontalBarItem, 1), MoveThumb(kVerticalBarItem, 1)}, 1, 1},
        {101, 80, {MoveThumb(kHorizontalBarItem, 1), MoveThumb(kVerticalBarItem, 1)}, 1, 0},
        {100, 81, {MoveThumb(kHorizontalBarItem, 1), MoveThumb(kVerticalBarItem, 1)}, 0, 1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        const TestImage panned = RandomImage(c.width, c.height, 3, 2);
        const DialogOutcome outcome = Run(panned, 1, Then(c.actions, {Click(kOKItem)}));
        EXPECT_EQ(outcome.Value(kHorizontalBarItem), c.across);
        EXPECT_EQ(outcome.Value(kVerticalBarItem), c.down);
        EXPECT_EQ(outcome.Last().controls[kHorizontalBarItem - 1], c.width > 100);
        EXPECT_EQ(outcome.Last().controls[kVerticalBarItem - 1], c.height > 80);
        EXPECT_EQ(outcome.stored, 1);
    }
    // Half of an odd size is rounded towards zero.
    InstallDialog(101, 79);
    const TestImage odd = RandomImage(250, 181, 3, 2);
    const std::pair<int16_t, std::pair<int16_t, int16_t>> pages[] = {{kPageUp, {24, 12}},
                                                                     {kPageDown, {124, 90}}};
    for (const auto &[part, pan] : pages) {
        const DialogOutcome outcome =
            Run(odd, 1, {Press(kHorizontalBarItem, part), Press(kVerticalBarItem, part)});
        EXPECT_EQ(std::pair(outcome.Value(kHorizontalBarItem), outcome.Value(kVerticalBarItem)), pan);
    }
}

TEST_F(RadiusDialog, RebuildsOncePerHandledItem) {
    const struct {
        int16_t width, height;
        Actions actions;
        int64_t rebuilds;
    } cases[] = {
        {250, 181, {}, 1},
        {250, 181, {Key('4'), Key('2')}, 3},
        {250,
         181,
         {Click(kPreviewCheckBoxItem), Click(kRadiusFieldItem), Press(kRadiusBarItem, kUp),
          Press(kHorizontalBarItem, 0), Press(kVerticalBarItem, 0), Click(kPlusItem), Click(kMinusItem)},
         8},
        {250,
         181,
         {Click(4), Click(kPreviewItem), Click(11), Event(nullEvent), Event(updateEvt), Event(activateEvt)},
         1},
        {40, 30, {Press(kHorizontalBarItem, kDownArrow), MoveThumb(kVerticalBarItem, 9)}, 1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        const int64_t bytesBefore = faults::BytesInUse();
        const DialogOutcome outcome = Run(RandomImage(c.width, c.height, 3, 2), 1, c.actions);
        EXPECT_EQ(outcome.rebuilds, c.rebuilds);
        EXPECT_EQ(faults::BytesInUse() - bytesBefore, c.rebuilds * ((c.width + 12) * 3 + 9));
    }
}

TEST_F(RadiusDialog, EndsByButtonsAndKeys) {
    const struct {
        UserAction end;
        OSErr result;
    } cases[] = {
        {Click(kOKItem), noErr},
        {Key(kReturn), noErr},
        {Key(kEnter), noErr},
        {Click(kCancelItem), userCanceledErr},
        {Key(kEscape), userCanceledErr},
        {Key('.', cmdKey), userCanceledErr},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        const DialogOutcome outcome = Run(image, 2, {Key('4'), c.end});
        EXPECT_EQ(outcome.result, c.result);
        EXPECT_EQ(outcome.stored, c.result == noErr ? 4 : 2);
        EXPECT_EQ(outcome.states.size(), 2u);
        EXPECT_EQ(gProxyPtr, nullptr);
    }
    EXPECT_EQ(Run(image, 2, {Key('.'), Click(kOKItem)}).Field(), ".") << "a period alone is text";
}

TEST_F(RadiusDialog, AnswersForThoseWhoDoNotWatch) {
    const DialogOutcome outcome = Run(image, 2.5f, user::Answer(kRadiusFieldItem, "5"));
    EXPECT_EQ(outcome.result, noErr);
    EXPECT_EQ(outcome.stored, 5);
}

TEST_F(RadiusDialog, OpensWithTheTextSelectedAndThePreviewOn) {
    const DialogOutcome outcome = Run(image, 3, {});
    const EditedText &field = outcome.Last().texts[kRadiusFieldItem - 1];
    EXPECT_EQ(field.selectionStart, 0u);
    EXPECT_EQ(field.selectionEnd, 1u);
    EXPECT_EQ(outcome.Value(kPreviewCheckBoxItem), 1);
    EXPECT_EQ(Run(image, 3, {Click(kPreviewCheckBoxItem)}).Value(kPreviewCheckBoxItem), 0);
}

TEST_F(RadiusDialog, EnabledItemsWithoutARoleAreIgnored) {
    std::vector<uint8_t> items = DialogItemList();
    for (const int16_t item : std::initializer_list<int16_t>{4, 7, 10, 11, 12, 13}) {
        ItemBounds(&items, item)[8] &= 0x7F;
    }
    InstallItems(items);
    const DialogOutcome outcome =
        Run(image, 2.5f, {Click(4), Click(7), Click(10), Click(11), Click(12), Click(13), Click(kOKItem)});
    EXPECT_EQ(outcome.stored, 2.5f);
    EXPECT_EQ(outcome.rebuilds, 1);
}

TEST_F(RadiusDialog, WithoutItsResourcesNothingOpens) {
    faults::RemoveResources();
    EXPECT_EQ(Run(image, 3, {Click(kOKItem)}).result, userCanceledErr);
    faults::AddResource(kDialogType, kRadiusDialogID, DialogTemplate());
    const DialogOutcome outcome = Run(image, 3, {Click(kOKItem)});
    EXPECT_EQ(outcome.result, userCanceledErr);
    EXPECT_TRUE(outcome.states.empty());
}

TEST_F(RadiusDialog, WorksWithoutAWorkImage) {
    faults::SetDiskSpace(16);
    refuseTemporaryMemory = true;
    const struct {
        UserAction end;
        OSErr result;
        float stored;
    } cases[] = {{Click(kOKItem), dskFulErr, 4}, {Click(kCancelItem), userCanceledErr, 2}};
    for (const auto &c : cases) {
        const DialogOutcome outcome = Run(image, 2, {Press(kHorizontalBarItem, kUp), Key('4'), c.end});
        EXPECT_EQ(outcome.result, c.result);
        EXPECT_EQ(outcome.stored, c.stored);
        EXPECT_EQ(outcome.Value(kHorizontalBarItem), 74);
        EXPECT_EQ(outcome.rebuilds, 0);
    }
    EXPECT_EQ(FileCount(), 0u);
}

TEST_F(RadiusDialog, SurvivesEveryFailureOfMemory) {
    InstallDialog(20, 16);
    for (const bool refuse : {false, true}) {
        refuseTemporaryMemory = refuse;
        for (failAllocation = 1; failAllocation <= 30; ++failAllocation) {
            const DialogOutcome outcome =
                Run(image, 2, {Key('4'), Press(kHorizontalBarItem, kUp), Click(kPlusItem), Click(kOKItem)});
            if (outcome.states.empty()) {
                EXPECT_EQ(outcome.result, userCanceledErr);
                EXPECT_EQ(outcome.stored, 2);
            } else {
                EXPECT_EQ(outcome.stored, 5);
            }
        }
        failAllocation = 0;
    }
    EXPECT_EQ(FileCount(), 0u);
}

}  // namespace
