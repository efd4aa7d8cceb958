// The dialog in a window of Windows' own: real messages give the same results as the same session from a
// script.
#include <windows.h>

#include <algorithm>
#include <functional>
#include <thread>

#include "platform/windows/dialog_window.h"
#include "platform/windows/display.h"
#include "tests/support/window_sessions.h"

namespace {

using user::Click;
using user::Key;
using Step = std::function<void(HWND)>;

constexpr DWORD kPatienceMilliseconds = 20000;

// The session on the screen. Steps are taken whenever the dialog has nothing to do.
struct Stepping {
    std::vector<Step> steps;
    std::vector<DialogState> states;
    HWND host;
    DWORD lastStep;
};
Stepping *stepping;
int resolution;  // of its window

HWND DialogWindowOf(HWND host) {
    HWND window = nullptr;
    do {
        window = FindWindowExW(nullptr, window, L"#32770", L"Hybrid Median");
    } while (window != nullptr && (GetWindow(window, GW_OWNER) != host || !IsWindowVisible(window)));
    return window;
}

void Put(HWND window, UINT message, WPARAM first, LPARAM second) {
    EXPECT_NE(PostMessageW(window, message, first, second), 0);
}

RECT PlaceOf(const Rect &bounds) {
    RECT place = {bounds.left, bounds.top, bounds.right, bounds.bottom};
    for (LONG *side : {&place.left, &place.top, &place.right, &place.bottom}) {
        *side = windows::Scaled(static_cast<int>(*side), resolution);
    }
    return place;
}

const Rect &BoundsOf(int16_t item) {
    return model::ItemAt(model::OpenDialogs().back(), item)->bounds;
}

POINT MiddleOf(const RECT &place) {
    return {(place.left + place.right) / 2, (place.top + place.bottom) / 2};
}

HWND ControlAt(HWND dialog, int16_t item) {
    const HWND control = ChildWindowFromPoint(dialog, MiddleOf(PlaceOf(BoundsOf(item))));
    return control == dialog ? nullptr : control;
}

void PressAndRelease(HWND control, POINT place) {
    const LPARAM where = MAKELPARAM(place.x, place.y);
    Put(control, WM_LBUTTONDOWN, MK_LBUTTON, where);
    Put(control, WM_LBUTTONUP, 0, where);
}

void ClickAt(HWND dialog, int16_t item) {
    const HWND control = ControlAt(dialog, item);
    POINT place = MiddleOf(PlaceOf(BoundsOf(item)));
    if (control != nullptr) {
        MapWindowPoints(dialog, control, &place, 1);
    }
    PressAndRelease(control == nullptr ? dialog : control, place);
}

// What a bar tells its window of.
void Scroll(HWND dialog, HWND bar, const TrackedPart &tracked) {
    static constexpr std::pair<int16_t, int> kCodes[] = {{kUp, SB_LINEUP},
                                                         {kDownArrow, SB_LINEDOWN},
                                                         {kPageUp, SB_PAGEUP},
                                                         {kPageDown, SB_PAGEDOWN},
                                                         {kControlIndicatorPart, SB_THUMBPOSITION}};
    const auto *code = std::find_if(std::begin(kCodes), std::end(kCodes),
                                    [&](const auto &entry) { return entry.first == tracked.part; });
    ASSERT_NE(code, std::end(kCodes));
    const bool upright = (GetWindowLongW(bar, GWL_STYLE) & SBS_VERT) != 0;
    Put(dialog, upright ? WM_VSCROLL : WM_HSCROLL, MAKEWPARAM(code->second, tracked.value),
        reinterpret_cast<LPARAM>(bar));
}

void PressKey(HWND dialog, char character) {
    constexpr std::pair<char, WPARAM> kKeys[] = {
        {kReturn, VK_RETURN}, {kEnter, VK_RETURN}, {kEscape, VK_ESCAPE}};
    const HWND focus = GetFocus();
    for (const auto &[code, key] : kKeys) {
        if (code == character) {
            Put(focus, WM_KEYDOWN, key, code == kEnter ? 1 << 24 : 0);
            return;
        }
    }
    Put(focus == nullptr ? dialog : focus, WM_CHAR, static_cast<WPARAM>(character), 0);
}

void Perform(HWND dialog, const UserAction &action) {
    if (action.event.what == keyDown) {
        PressKey(dialog, static_cast<char>(action.event.message));
    } else if (action.tracked.part != 0) {
        const HWND bar = ControlAt(dialog, action.item);
        if (bar != nullptr) {
            Scroll(dialog, bar, action.tracked);
        }
    } else {
        ClickAt(dialog, action.item);
    }
}

std::vector<Step> StepsOf(const std::vector<UserAction> &actions) {
    std::vector<Step> steps;
    for (const UserAction &action : actions) {
        steps.push_back([=](HWND dialog) { Perform(dialog, action); });
    }
    return steps;
}

std::string TextOf(HWND control) {
    char text[300];
    GetWindowTextA(control, text, sizeof text);
    return text;
}

// What the screen shows of the picture, at the middle of each of its pixels.
void ExpectPixels(HWND dialog, const DialogState &state) {
    RECT inside;
    GetClientRect(dialog, &inside);
    const HDC screen = GetDC(dialog);
    const HDC memory = CreateCompatibleDC(screen);
    BITMAPINFO layout = {};
    layout.bmiHeader = {sizeof layout.bmiHeader, inside.right, -inside.bottom, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void *bits = nullptr;
    const HBITMAP shot = CreateDIBSection(screen, &layout, DIB_RGB_COLORS, &bits, nullptr, 0);
    const HGDIOBJ before = SelectObject(memory, shot);
    BitBlt(memory, 0, 0, inside.right, inside.bottom, screen, 0, 0, SRCCOPY);
    const uint8_t *pixel = state.picture.data();
    int64_t wrong = 0;
    for (int16_t y = state.drawn.top; y < state.drawn.bottom; ++y) {
        for (int16_t x = state.drawn.left; x < state.drawn.right; ++x, pixel += 4) {
            const POINT at =
                MiddleOf(PlaceOf({y, x, static_cast<int16_t>(y + 1), static_cast<int16_t>(x + 1)}));
            const uint32_t shown = static_cast<uint32_t *>(bits)[at.y * inside.right + at.x] & 0xFFFFFF;
            wrong += shown != static_cast<uint32_t>(pixel[1] << 16 | pixel[2] << 8 | pixel[3]);
        }
    }
    SelectObject(memory, before);
    DeleteObject(shot);
    DeleteDC(memory);
    ReleaseDC(dialog, screen);
    EXPECT_EQ(wrong, 0);
}

void ExpectShown(HWND dialog, const DialogState &state) {
    EXPECT_EQ(TextOf(ControlAt(dialog, kRadiusFieldItem)), state.texts[kRadiusFieldItem - 1].characters);
    EXPECT_EQ(SendMessageW(ControlAt(dialog, kPreviewCheckBoxItem), BM_GETCHECK, 0, 0) == BST_CHECKED,
              state.values[kPreviewCheckBoxItem - 1] != 0);
    for (const int16_t item : {kRadiusBarItem, kHorizontalBarItem, kVerticalBarItem}) {
        const HWND bar = ControlAt(dialog, item);
        ASSERT_EQ(bar != nullptr, state.controls[static_cast<size_t>(item - 1)]);
        if (bar != nullptr) {
            SCROLLINFO shown = {sizeof shown, SIF_POS, 0, 0, 0, 0, 0};
            GetScrollInfo(bar, SB_CTL, &shown);
            EXPECT_EQ(shown.nPos, state.values[static_cast<size_t>(item - 1)]) << "item " << item;
        }
    }
    ExpectPixels(dialog, state);
}

void TakeStep(DialogRecord *dialog) {
    const HWND window = DialogWindowOf(stepping->host);
    const size_t step = stepping->states.size();
    if (window == nullptr || step == stepping->steps.size()) {
        if (GetTickCount() - stepping->lastStep > kPatienceMilliseconds) {
            ADD_FAILURE() << "the dialog does not end";
            Put(window, WM_CLOSE, 0, 0);
            stepping->lastStep = GetTickCount();
        }
        return;
    }
    EXPECT_FALSE(IsWindowEnabled(stepping->host)) << "modal to the host";
    stepping->states.push_back(StateOf(*dialog));
    UpdateWindow(window);
    ExpectShown(window, stepping->states.back());
    stepping->steps[step](window);
    stepping->lastStep = GetTickCount();
}

bool NextEvent(DialogRecord *dialog, EventRecord *event) {
    const bool more = SystemDialogBackend().nextEvent(dialog, event);
    if (more && event->what == nullEvent) {
        TakeStep(dialog);
    }
    return more;
}

class WindowsDialog : public DialogTest {
  protected:
    WindowsDialog()
        : host(CreateWindowW(L"STATIC", L"A host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 200, nullptr,
                             nullptr, nullptr, nullptr)) {}
    ~WindowsDialog() override { DestroyWindow(host); }

    DialogOutcome RunOnScreen(const TestImage &source, float radius, const std::vector<Step> &steps) {
        const windows::InOwnDots dots;
        Stepping current = {steps, {}, host, GetTickCount()};
        resolution = windows::DisplayOf(nullptr).resolution;
        stepping = &current;
        DialogBackend stepped = SystemDialogBackend();
        stepped.nextEvent = NextEvent;
        SetDialogBackend(&stepped);
        UsePlatformData(0, &host);
        DialogOutcome outcome = RunOnBackend(source, radius);
        UsePlatformData(0, nullptr);
        SetDialogBackend(nullptr);
        EXPECT_TRUE(IsWindowEnabled(host));
        outcome.states = std::move(current.states);
        return outcome;
    }

    const HWND host;
    const TestImage image = RandomImage(250, 181, 3, 1);
};

TEST_F(WindowsDialog, GivesWhatTheScriptGives) {
    for (const DialogSession &session : WindowSessions()) {
        SCOPED_TRACE(session.name);
        ExpectSame(RunOnScreen(image, session.radius, StepsOf(session.actions)),
                   Run(image, session.radius, session.actions));
    }
}

TEST_F(WindowsDialog, KeysMeanTheSameWhereverTheFocusIs) {
    // Row by row. Bars have no number.
    constexpr int kStops[] = {kRadiusFieldItem, kMinusItem, 0, kPlusItem,           kCancelItem,
                              kOKItem,          0,          0, kPreviewCheckBoxItem};
    for (int tabs = 0; tabs < static_cast<int>(std::size(kStops)); ++tabs) {
        for (const auto &[key, result] :
             {std::pair{kReturn, noErr}, {kEnter, noErr}, {kEscape, userCanceledErr}}) {
            SCOPED_TRACE(testing::Message() << tabs << " tabs, key " << int{key});
            const Step goOn = [=](HWND dialog) {
                for (int i = 0; i < tabs; ++i) {
                    Put(GetFocus() == nullptr ? dialog : GetFocus(), WM_KEYDOWN, VK_TAB, 0);
                }
            };
            const std::vector<Step> steps = {goOn,
                                             [&](HWND dialog) {
                                                 EXPECT_EQ(GetDlgCtrlID(GetFocus()), kStops[tabs]);
                                                 PressKey(dialog, '5');
                                             },
                                             goOn, [&, end = key](HWND dialog) { PressKey(dialog, end); }};
            const DialogOutcome outcome = RunOnScreen(image, 3, steps);
            EXPECT_EQ(outcome.Field(), "5");
            EXPECT_EQ(outcome.result, result);
        }
    }
    // But space presses what has the focus, here the button that makes the radius smaller, and arrows move
    // bars.
    const auto press = [](WPARAM key) {
        return [=](HWND) {
            Put(GetFocus(), WM_KEYDOWN, key, 0);
            Put(GetFocus(), WM_KEYUP, key, 0);
        };
    };
    EXPECT_EQ(
        RunOnScreen(image, 3, {press(VK_UP), press(VK_UP), press(VK_DOWN), StepsOf({Click(kOKItem)})[0]})
            .stored,
        4);
    EXPECT_EQ(RunOnScreen(image, 3, {press(VK_TAB), press(VK_SPACE), StepsOf({Click(kOKItem)})[0]}).stored,
              2);
    EXPECT_EQ(
        RunOnScreen(image, 3, {press(VK_TAB), press(VK_TAB), press(VK_RIGHT), StepsOf({Click(kOKItem)})[0]})
            .stored,
        4);
}

TEST_F(WindowsDialog, TheFieldShowsWhatAppliesWhenItIsLeft) {
    const Step tab = [](HWND) { Put(GetFocus(), WM_KEYDOWN, VK_TAB, 0); };
    const Step clickBar = [](HWND dialog) { ClickAt(dialog, kHorizontalBarItem); };
    for (const auto &[leave, focused] :
         {std::pair(tab, kMinusItem), std::pair(clickBar, kHorizontalBarItem)}) {
        for (const LeftField &test : LeftFields()) {
            SCOPED_TRACE(test.shown);
            std::vector<Step> steps = StepsOf(test.typed);
            steps.push_back(leave);
            steps.emplace_back([&, to = focused](HWND dialog) {
                EXPECT_EQ(TextOf(ControlAt(dialog, kRadiusFieldItem)), test.shown);
                EXPECT_EQ(GetFocus(), ControlAt(dialog, to));
                PressKey(dialog, kReturn);
            });
            const DialogOutcome outcome = RunOnScreen(image, 2.5f, steps);
            // A fraction stays until the number is changed.
            EXPECT_EQ(outcome.stored, test.typed.empty() ? 2.5f : std::stof(test.shown));
        }
    }
    EXPECT_EQ(RunOnScreen(image, 3,
                          {StepsOf({Key('9')})[0], tab, StepsOf({Key('2')})[0], StepsOf({Key(kReturn)})[0]})
                  .stored,
              2)
        << "typed over what was shown";
}

// The wheel's messages go to the control with the focus.
void Pan(HWND dialog, const Panning &panning) {
    const POINT middle = MiddleOf(PlaceOf(BoundsOf(kPreviewItem)));
    POINT onScreen = middle;
    ClientToScreen(dialog, &onScreen);
    for (const bool shift : panning.notches) {
        Put(GetFocus(), WM_MOUSEWHEEL, MAKEWPARAM(shift ? MK_SHIFT : 0, -WHEEL_DELTA),
            MAKELPARAM(onScreen.x, onScreen.y));
    }
    const auto mouse = [&](UINT message, const Point &way) {
        const RECT gone = PlaceOf({way.v, way.h, way.v, way.h});
        Put(dialog, message, message == WM_LBUTTONUP ? 0 : MK_LBUTTON,
            MAKELPARAM(middle.x + gone.left, middle.y + gone.top));
    };
    if (!panning.drags.empty()) {
        mouse(WM_LBUTTONDOWN, {0, 0});
        for (const Point &way : panning.drags) {
            mouse(WM_MOUSEMOVE, way);
        }
        mouse(WM_LBUTTONUP, panning.drags.back());
        mouse(WM_MOUSEMOVE, {0, 0});
    }
}

TEST_F(WindowsDialog, ThePictureIsPannedByHandAndWheel) {
    for (const Panning &panning : Pannings()) {
        SCOPED_TRACE(testing::Message() << panning.drags.size() << " drags");
        std::vector<UserAction> actions = panning.moves;
        actions.push_back(Key(kReturn));
        const DialogOutcome slow = Run(image, 3, actions);
        const DialogOutcome fast =
            RunOnScreen(image, 3, {[&](HWND dialog) { Pan(dialog, panning); }, StepsOf({Key(kReturn)})[0]});
        EXPECT_EQ(fast.Last().values, slow.Last().values);
        EXPECT_EQ(fast.rebuilds, slow.rebuilds);
    }
    // A wheel that is tilted; and one elsewhere.
    const Step tilt = [](HWND dialog) {
        POINT place = MiddleOf(PlaceOf(BoundsOf(kPreviewItem)));
        ClientToScreen(dialog, &place);
        Put(dialog, WM_MOUSEHWHEEL, MAKEWPARAM(0, WHEEL_DELTA), MAKELPARAM(place.x, place.y));
        Put(dialog, WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), 0);
    };
    const DialogOutcome tilted = RunOnScreen(image, 3, {tilt, StepsOf({Key(kReturn)})[0]});
    EXPECT_EQ(tilted.Value(kHorizontalBarItem), 88);
    EXPECT_EQ(tilted.Value(kVerticalBarItem), 50);
}

// As long as the mouse is down, a bar tells of its arrow again and again; and a thumb goes where it is
// dragged.
TEST_F(WindowsDialog, BarsFollowTheMouse) {
    std::thread hand;
    const auto press = [&](LONG fromTheEnd, LONG drag) {
        return [=, &hand](HWND dialog) {
            const HWND bar = ControlAt(dialog, kHorizontalBarItem);
            RECT inside;
            GetClientRect(bar, &inside);
            const LPARAM start = MAKELPARAM(inside.right - fromTheEnd, inside.bottom / 2);
            const LPARAM end = MAKELPARAM(inside.right - fromTheEnd + drag, inside.bottom / 2);
            Put(bar, WM_LBUTTONDOWN, MK_LBUTTON, start);
            // The bar runs a loop of its own until the mouse is up.
            hand = std::thread([=] {
                Sleep(700);
                Put(bar, WM_MOUSEMOVE, MK_LBUTTON, end);
                Put(bar, WM_LBUTTONUP, 0, end);
            });
        };
    };
    const Step done = [&](HWND dialog) {
        hand.join();
        PressKey(dialog, kReturn);
    };
    // The field that is left settles its number first.
    for (const char typed : {'2', '9'}) {
        EXPECT_EQ(
            RunOnScreen(image, 1, {StepsOf({Key(typed)})[0], press(5, 0), done}).Value(kHorizontalBarItem),
            76);
    }
    const DialogOutcome dragged = RunOnScreen(image, 1, {press(50, 25), done});
    EXPECT_GT(dragged.Value(kHorizontalBarItem), 76);
    EXPECT_EQ(dragged.rebuilds, 2);
}

TEST_F(WindowsDialog, ClosesWithItsWindowAndWithTheHosts) {
    const Step ends[] = {[](HWND dialog) { Put(dialog, WM_CLOSE, 0, 0); },
                         [](HWND dialog) { DestroyWindow(dialog); }, [](HWND) { PostQuitMessage(7); }};
    for (const Step &end : ends) {
        EXPECT_EQ(RunOnScreen(image, 3, {end}).result, userCanceledErr);
    }
    MSG message;
    EXPECT_NE(PeekMessageW(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE), 0) << "the host quits, too";
    EXPECT_EQ(message.wParam, 7u);
}

// Everything lies in the window, and apart from everything else, in the picture's resolution and in another
// one.
TEST_F(WindowsDialog, FitsEveryResolution) {
    InstallItems(DialogItemList());
    for (const int wanted : {96, 144, 192}) {
        const Step look = [=](HWND dialog) {
            resolution = wanted;
            RECT frame = {0, 0, windows::Scaled(380, resolution), windows::Scaled(452, resolution)};
            AdjustWindowRectEx(&frame, static_cast<DWORD>(GetWindowLongW(dialog, GWL_STYLE)), FALSE,
                               static_cast<DWORD>(GetWindowLongW(dialog, GWL_EXSTYLE)));
            SendMessageW(dialog, WM_DPICHANGED, MAKEWPARAM(resolution, resolution),
                         reinterpret_cast<LPARAM>(&frame));
            RECT inside;
            GetClientRect(dialog, &inside);
            EXPECT_EQ(inside.right, windows::Scaled(380, resolution));
            std::vector<RECT> places;
            for (HWND child = GetWindow(dialog, GW_CHILD); child != nullptr;
                 child = GetWindow(child, GW_HWNDNEXT)) {
                RECT place;
                RECT common;
                GetWindowRect(child, &place);
                MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT *>(&place), 2);
                UnionRect(&common, &place, &inside);
                EXPECT_TRUE(EqualRect(&common, &inside)) << TextOf(child);
                for (const RECT &other : places) {
                    EXPECT_FALSE(IntersectRect(&common, &place, &other)) << TextOf(child);
                }
                places.push_back(place);
                if ((GetWindowLongW(child, GWL_EXSTYLE) & WS_EX_CLIENTEDGE) != 0) {
                    // A field's text stands at its top, so that there is little room below.
                    const LRESULT text = SendMessageW(child, EM_POSFROMCHAR, 0, 0);
                    TEXTMETRICW metrics = {};
                    const HDC device = GetDC(child);
                    SelectObject(device, reinterpret_cast<HGDIOBJ>(SendMessageW(child, WM_GETFONT, 0, 0)));
                    GetTextMetricsW(device, &metrics);
                    ReleaseDC(child, device);
                    const int below =
                        static_cast<int>(place.bottom - place.top) - HIWORD(text) - metrics.tmHeight;
                    EXPECT_NEAR(below, HIWORD(text), windows::Scaled(7, wanted));
                }
                if (TextOf(child) != "" && (GetWindowLongW(child, GWL_STYLE) & WS_TABSTOP) == 0) {
                    const HDC device = GetDC(child);
                    SelectObject(device, reinterpret_cast<HGDIOBJ>(SendMessageW(child, WM_GETFONT, 0, 0)));
                    SIZE size = {};
                    GetTextExtentPoint32A(device, TextOf(child).c_str(),
                                          static_cast<int>(TextOf(child).size()), &size);
                    ReleaseDC(child, device);
                    EXPECT_LE(size.cx, place.right - place.left) << TextOf(child);
                    EXPECT_LE(size.cy, place.bottom - place.top) << TextOf(child);
                }
            }
            EXPECT_EQ(places.size(), 12u);
        };
        RunOnScreen(image, 4, {look, StepsOf({Key(kReturn)})[0]});
    }
}

}  // namespace
