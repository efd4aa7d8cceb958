// Opening, running and reading dialogs in general, whatever the radius dialog does with them.
#include "dialog/dialog_utilities.h"

#include <cstring>

#include "platform/memory.h"
#include "platform/text_utils.h"
#include "tests/support/dialog_session.h"

namespace {

using user::Click;
using user::Event;
using user::Key;

constexpr OSType kVersionType = FourCharCode("vers");
constexpr OSType kWindowDefinitionType = FourCharCode("WDEF");
constexpr int32_t kUsualSystem = 0x1040;

std::vector<uint16_t> hostEvents;

// Leaves another port current, as a host that draws may do.
void NoteHostEvent(EventRecord *event) {
    hostEvents.push_back(event->what);
    SetPort(nullptr);
}

struct Title {
    explicit Title(const std::string &text) { model::CopyTitle(text, bytes); }
    Str255 bytes;
};

class DialogUtilities : public DialogTest {
  protected:
    ~DialogUtilities() override { faults::SetSystemVersion(kUsualSystem); }

    void SetUp() override { UseScriptedDialogs(&session); }

    DialogRef Open() {
        return GetNewMooDialog(kRadiusDialogID, nullptr, reinterpret_cast<WindowRef>(intptr_t{-1}));
    }

    int16_t Definition() const {
        int16_t definition;
        std::memcpy(&definition, *GetResource(kDialogType, kRadiusDialogID) + 8, sizeof definition);
        return definition;
    }

    ScriptedSession session;
};

TEST_F(DialogUtilities, ChooseTheWindowDefinition) {
    const struct {
        std::vector<uint8_t> version;  // the resource 'vers' 2; empty for none
        int32_t system;                // negative: the system does not report it
        bool hostDefinition;
        int16_t expected;
    } cases[] = {
        {{}, kUsualSystem, false, 5},
        {{0x00, 0x07, 0x80, 0x00}, kUsualSystem, false, 1},
        {{0x07, 0x00, 0x80, 0x00}, kUsualSystem, false, 5},
        {{0x00}, kUsualSystem, false, 5},
        {{0x00, 0x08}, kUsualSystem, false, 5},
        {{}, 0x0700, true, 5},
        {{0x00, 0x07}, 0x0700, true, 1},
        {{}, 0x06FF, true, 2053},
        {{}, 0x06FF, false, 1},
        {{0x00, 0x07}, 0x06FF, true, 2053},
        {{}, -1, true, 2053},
        {{}, -1, false, 1},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        InstallDialog(100, 80);
        if (!c.version.empty()) {
            faults::AddResource(kVersionType, 2, c.version);
        }
        if (c.hostDefinition) {
            faults::AddResource(kWindowDefinitionType, 128, {0});
        }
        faults::SetSystemVersion(c.system);
        DialogRef dialog = Open();
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(Definition(), c.expected);
        DisposeDialog(dialog);
    }
    // Only that one host has such windows.
    faults::SetSystemVersion(0x0600);
    SetUpMoveableModal(GetResource(kDialogType, kRadiusDialogID), FourCharCode("8B1F"));
    EXPECT_EQ(Definition(), 1);
}

TEST_F(DialogUtilities, CenterOnTheScreen) {
    const struct {
        Rect bounds;
        Rect screen;
        Rect expected;
    } cases[] = {
        {{0, 0, 200, 300}, {0, 0, 480, 640}, {106, 170, 306, 470}},
        {{40, -30, 240, 270}, {0, 0, 480, 640}, {106, 170, 306, 470}},
        {{0, 0, 700, 300}, {0, 0, 480, 640}, {-60, 170, 640, 470}},
        {{0, 0, 701, 643}, {0, 0, 480, 640}, {-60, -1, 641, 642}},
        // The screen's own position does not matter.
        {{0, 0, 200, 300}, {100, 50, 580, 690}, {106, 170, 306, 470}},
    };
    for (const auto &c : cases) {
        session.screen = c.screen;
        Handle block = NewHandle(sizeof(Rect));
        std::memcpy(*block, &c.bounds, sizeof c.bounds);
        CenterDialog(block);
        EXPECT_EQ(std::memcmp(*block, &c.expected, sizeof c.expected), 0) << "case " << &c - cases;
        DisposeHandle(block);
    }
}

TEST_F(DialogUtilities, TextGoesToItemsAndTitlesToControls) {
    DialogRef dialog = Open();
    Str255 text;
    for (const int16_t item :
         std::initializer_list<int16_t>{kOKItem, kPreviewCheckBoxItem, 4, kRadiusFieldItem}) {
        SetDNum(dialog, item, -120 - item);
        EXPECT_EQ(GetDNum(dialog, item), -120 - item) << item;
    }
    // Regardless of the disabled bit.
    for (const int16_t type : std::initializer_list<int16_t>{8, 16, 136, 144, 4, 132}) {
        int16_t oldType;
        Handle handle;
        Rect bounds;
        const int16_t item = (type & 0x7F) == kButtonDialogItem ? kOKItem : kRadiusFieldItem;
        GetDialogItem(dialog, item, &oldType, &handle, &bounds);
        SetDialogItem(dialog, item, type, handle, &bounds);
        SetDText(dialog, item, Title("17 px").bytes);
        GetDText(dialog, item, text);
        EXPECT_EQ(model::TitleFrom(text), "17 px") << type;
        EXPECT_EQ(GetDNum(dialog, item), 17) << type;
    }
    // Neither the picture nor a nonexistent item has a text.
    for (const int16_t item : std::initializer_list<int16_t>{kPreviewItem, 99, 0}) {
        SetDNum(dialog, item, 5);
        GetDText(dialog, item, text);
        EXPECT_EQ(text[0], 0) << item;
        SetDGItem(dialog, item, 1);
    }
    SetDText(dialog, kRadiusFieldItem, Title("none").bytes);
    EXPECT_EQ(GetDNum(dialog, kRadiusFieldItem), 0);
    DisposeDialog(dialog);
}

TEST_F(DialogUtilities, NumbersAndTheirTexts) {
    const std::pair<const char *, int32_t> cases[] = {
        {"", 0},
        {"7", 7},
        {"  42", 42},
        {"-3", -3},
        {"+5", 5},
        {"- 3", 0},
        {"12ab", 12},
        {"ab12", 0},
        {"2147483647", INT32_MAX},
        {"3.9", 3},
        {"--1", 0},
        {"2147483648", INT32_MAX},
        {"-2147483648", INT32_MIN},
        {"-99999999999999999999999", INT32_MIN},
        {"0006", 6},
    };
    for (const auto &[text, number] : cases) {
        int32_t read = -1;
        StringToNum(Title(text).bytes, &read);
        EXPECT_EQ(read, number) << text;
        Str255 written;
        NumToString(number, written);
        StringToNum(written, &read);
        EXPECT_EQ(read, number);
    }
}

TEST_F(DialogUtilities, HandEventsToTheHostAndDragTheWindow) {
    const struct {
        std::vector<UserAction> actions;
        std::vector<uint16_t> hostEvents;
        int32_t dh, dv;  // how far the window moved
    } cases[] = {
        {{Event(nullEvent), Event(nullEvent)}, {nullEvent, nullEvent}, 0, 0},
        {{Event(updateEvt), Event(activateEvt)}, {}, 0, 0},
        {{Event(updateEvt, true), Event(activateEvt, true)}, {updateEvt, activateEvt}, 0, 0},
        {{Key('4'), Click(4)}, {}, 0, 0},
        // The host sees a drag as a null event.
        {{user::DragWindow(30, -7)}, {nullEvent}, 30, -7},
        {{user::DragWindow(30, 5), user::DragWindow(-60, 1)}, {nullEvent, nullEvent}, -30, 6},
        // Four pixels along each edge are out of bounds: the mouse starts at (320, 12) on a screen of 640 by
        // 480.
        {{user::DragWindow(-316, 0)}, {nullEvent}, -316, 0},
        {{user::DragWindow(-317, 0)}, {nullEvent}, 0, 0},
        {{user::DragWindow(315, 463)}, {nullEvent}, 315, 463},
        {{user::DragWindow(316, 0)}, {nullEvent}, 0, 0},
        {{user::DragWindow(0, 464)}, {nullEvent}, 0, 0},
        {{user::DragWindow(0, -8)}, {nullEvent}, 0, -8},
        {{user::DragWindow(0, -9)}, {nullEvent}, 0, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(testing::Message() << "case " << &c - cases);
        hostEvents.clear();
        processEvent = NoteHostEvent;
        const DialogOutcome outcome = Run(RandomImage(30, 20, 3, 1), 2, c.actions);
        EXPECT_EQ(hostEvents, c.hostEvents);
        const Rect start = outcome.states.front().bounds;
        const Rect end = outcome.Last().bounds;
        EXPECT_EQ(end.left - start.left, c.dh);
        EXPECT_EQ(end.top - start.top, c.dv);
        EXPECT_EQ(end.bottom - start.bottom, c.dv);
        // The dialog works the same with a host that has no event procedure.
        processEvent = nullptr;
        EXPECT_EQ(Run(RandomImage(30, 20, 3, 1), 2, c.actions).Last().bounds.left, end.left);
    }
}

TEST_F(DialogUtilities, ThePlainBoxCannotBeDraggedAndBarsFollowTheWindow) {
    faults::AddResource(kVersionType, 2, {0x00, 0x07});
    const TestImage image = RandomImage(250, 181, 3, 1);
    const DialogOutcome plain = Run(image, 2, {user::DragWindow(30, 30)});
    EXPECT_EQ(plain.Last().bounds.left, plain.states.front().bounds.left);
    InstallDialog(100, 80);
    const DialogOutcome moved =
        Run(image, 2, {user::DragWindow(90, 130), user::Press(kHorizontalBarItem, kControlUpButtonPart)});
    EXPECT_EQ(moved.Value(kHorizontalBarItem), 74);
}

// What an extra event filter sees and does.
struct {
    std::vector<intptr_t> references;
    int16_t endWith;
} extra;

Boolean ExtraFilter(DialogRef dialog, EventRecord *event, int16_t *itemHit) {
    extra.references.push_back(GetWRefCon(GetDialogWindow(dialog)));
    SetWRefCon(GetDialogWindow(dialog), extra.references.back() + 1);
    *itemHit = extra.endWith;
    return event->what == keyDown;
}

TEST_F(DialogUtilities, ExtraFilterComesFirstAndSeesTheWindowsOwnReference) {
    extra = {{}, 77};
    session.actions = {Event(nullEvent), Key('4'), Key(kReturnCharCode)};
    DialogRef dialog = Open();
    OutlineButton(dialog, kOKItem);
    SetWRefCon(GetDialogWindow(dialog), 1000);
    int16_t item = 0;
    hostEvents.clear();
    MoveableModalDialog(dialog, NoteHostEvent, ExtraFilter, &item);
    EXPECT_EQ(item, 77);
    // For the first update, the null event and the key.
    EXPECT_EQ(extra.references, (std::vector<intptr_t>{1000, 1001, 1002}));
    EXPECT_EQ(GetWRefCon(GetDialogWindow(dialog)), 1003);
    EXPECT_EQ(hostEvents, (std::vector<uint16_t>{nullEvent}));
    EXPECT_EQ(gFilterProc, DialogFilter);

    GrafPtr before;
    GetPort(&before);
    MoveableModalDialog(dialog, nullptr, nullptr, &item);
    EXPECT_EQ(item, kOKItem);
    GrafPtr after;
    GetPort(&after);
    EXPECT_EQ(before, after);
    EXPECT_EQ(GetWRefCon(GetDialogWindow(dialog)), 1003);
    DisposeDialog(dialog);
}

}  // namespace
