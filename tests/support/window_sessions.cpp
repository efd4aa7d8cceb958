#include "tests/support/window_sessions.h"

namespace {

using user::Click;
using user::Key;
using user::MoveThumb;
using user::Press;

const std::pair<float, std::vector<UserAction>> kSessions[] = {
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
    {3, {Click(kRadiusFieldItem), Click(kPreviewCheckBoxItem), Key('1'), Key(kBackspace), Click(kOKItem)}},
    {3,
     {Click(4), Click(kPreviewItem), Click(kPreviewCheckBoxItem), Click(kPreviewCheckBoxItem),
      Click(kOKItem)}},
    {1,
     {Press(kHorizontalBarItem, kPageDown), Press(kHorizontalBarItem, kPageDown),
      Press(kVerticalBarItem, kPageDown), Press(kVerticalBarItem, kPageDown), Click(kOKItem)}},
    {1,
     {Press(kHorizontalBarItem, kUp), Press(kVerticalBarItem, kDownArrow), Press(kHorizontalBarItem, kPageUp),
      Click(kOKItem)}},
    {1, {MoveThumb(kHorizontalBarItem, 150), Press(kHorizontalBarItem, kDownArrow), Click(kOKItem)}},
    {1,
     {MoveThumb(kHorizontalBarItem, 150), Press(kHorizontalBarItem, kUp), MoveThumb(kVerticalBarItem, 0),
      Click(kOKItem)}},
    {3, {Key('5'), Key(kEscape)}},
    {3, {Key('5'), Click(kCancelItem)}},
};

}  // namespace

std::vector<DialogSession> WindowSessions() {
    std::vector<DialogSession> sessions;
    for (const auto &[radius, actions] : kSessions) {
        sessions.push_back({"session " + std::to_string(sessions.size()), radius, actions});
    }
    return sessions;
}

std::vector<LeftField> LeftFields() {
    return {{{}, "2"},
            {{Key('4')}, "4"},
            {{Key('1'), Key('2')}, "6"},
            {{Key('-'), Key('3')}, "1"},
            {{Key(kBackspace)}, "1"}};
}

std::vector<Panning> Pannings() {
    return {{{{5, -10}, {100, -30}},
             {},
             {MoveThumb(kHorizontalBarItem, 85), MoveThumb(kVerticalBarItem, 45),
              MoveThumb(kHorizontalBarItem, 105), MoveThumb(kVerticalBarItem, 0)}},
            {{},
             {false, true, true},
             {MoveThumb(kVerticalBarItem, 60), MoveThumb(kHorizontalBarItem, 88),
              MoveThumb(kHorizontalBarItem, 101)}}};
}

void ExpectSame(const DialogOutcome &shown, const DialogOutcome &scripted) {
    EXPECT_EQ(shown.result, scripted.result);
    EXPECT_EQ(shown.stored, scripted.stored);
    EXPECT_EQ(shown.rebuilds, scripted.rebuilds);
    ASSERT_EQ(shown.states.size(), scripted.states.size());
    for (size_t i = 0; i < shown.states.size(); ++i) {
        EXPECT_EQ(shown.states[i].values, scripted.states[i].values) << "before action " << i;
        EXPECT_EQ(shown.states[i].picture, scripted.states[i].picture) << "before action " << i;
        const EditedText &field = shown.states[i].texts[kRadiusFieldItem - 1];
        const EditedText &expected = scripted.states[i].texts[kRadiusFieldItem - 1];
        EXPECT_EQ(field.characters, expected.characters) << "before action " << i;
        EXPECT_EQ(field.selectionEnd, expected.selectionEnd) << "before action " << i;
    }
}
