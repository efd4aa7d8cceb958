#include "platform/windows/dialog_window.h"

#include <algorithm>
#include <iterator>

#include "platform/mac_roman.h"
#include "platform/windows/display.h"
#include "platform/windows/own_module.h"
#include "platform/windows/texts.h"

namespace {

using windows::DialogWindow;

// How long to wait for the user before the host gets an idle event.
constexpr DWORD kIdleMilliseconds = 50;
constexpr DWORD kStyle = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_CLIPCHILDREN | DS_MODALFRAME;

int16_t Coordinate(int value) {
    return static_cast<int16_t>(std::clamp<int>(value, INT16_MIN, INT16_MAX));
}

// Everything in it is made later, at its place in dots.
struct EmptyTemplate {
    DLGTEMPLATE header;
    WORD menu, windowClass, title;
};

void MoveModel(DialogWindow *shown) {
    POINT corner = {0, 0};
    ClientToScreen(shown->window, &corner);
    model::MoveWindowTo(&shown->dialog->window,
                        {Coordinate(windows::Unscaled(corner.y - shown->origin.y, shown->resolution)),
                         Coordinate(windows::Unscaled(corner.x - shown->origin.x, shown->resolution))});
}

void Paint(const DialogWindow &shown) {
    PAINTSTRUCT paint;
    const HDC device = BeginPaint(shown.window, &paint);
    windows::PaintPicture(shown, device);
    EndPaint(shown.window, &paint);
}

// The window has come to a display of another resolution.
void ChangeResolution(DialogWindow *shown, int resolution, const RECT &place) {
    shown->resolution = resolution;
    SetWindowPos(shown->window, nullptr, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
    windows::PlaceControls(shown);
    InvalidateRect(shown->window, nullptr, TRUE);
}

// TRUE when the message needs nothing else.
INT_PTR CALLBACK TakeMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_INITDIALOG) {
        SetWindowLongPtrW(window, DWLP_USER, second);
        return FALSE;
    }
    auto *shown = reinterpret_cast<DialogWindow *>(GetWindowLongPtrW(window, DWLP_USER));
    if (shown == nullptr || shown->window != window) {
        return FALSE;
    }
    switch (message) {
        case WM_COMMAND:
            windows::TakeCommand(
                shown, HIWORD(first),
                second != 0 ? reinterpret_cast<HWND>(second) : GetDlgItem(window, LOWORD(first)));
            return TRUE;
        case WM_HSCROLL:
        case WM_VSCROLL:
            windows::TakeScroll(shown, LOWORD(first), static_cast<int16_t>(HIWORD(first)),
                                reinterpret_cast<HWND>(second));
            return TRUE;
        case WM_PAINT:
            Paint(*shown);
            return TRUE;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
        case WM_MOUSEMOVE:
        case WM_LBUTTONUP:
            return windows::PanPicture(shown, message, second);
        case WM_CAPTURECHANGED:
            shown->grip.held = false;
            return TRUE;
        case WM_SETCURSOR:
            SetWindowLongPtrW(window, DWLP_MSGRESULT, TRUE);
            return reinterpret_cast<HWND>(first) == window && windows::ShowHand(*shown);
        case WM_MOVE:
            MoveModel(shown);
            return FALSE;
        case WM_DPICHANGED:
            ChangeResolution(shown, LOWORD(first), *reinterpret_cast<const RECT *>(second));
            return TRUE;
        case WM_CLOSE:
            user_actions::PostKey(&shown->actions, kEscapeCharCode);
            return TRUE;
        case WM_NCDESTROY:
            shown->window = nullptr;
            return FALSE;
        default:
            return FALSE;
    }
}

bool IsPressed(int key) {
    return GetKeyState(key) < 0;
}

bool IsPress(const MSG &message) {
    return message.message == WM_LBUTTONDOWN || message.message == WM_LBUTTONDBLCLK;
}

// The character of a key that presses a button wherever the focus is; 0 for others.
uint8_t ButtonKey(const MSG &message) {
    constexpr LPARAM kOnTheKeypad = 1 << 24;
    if (message.message != WM_KEYDOWN) {
        return 0;
    }
    switch (message.wParam) {
        case VK_RETURN:
            return (message.lParam & kOnTheKeypad) != 0 ? uint8_t{kEnterCharCode} : uint8_t{kReturnCharCode};
        case VK_ESCAPE:
            return kEscapeCharCode;
        case VK_OEM_PERIOD:
            return IsPressed(VK_CONTROL) ? uint8_t{kEscapeCharCode} : uint8_t{0};
        default:
            return 0;
    }
}

// Space does not: it presses the control with the focus.
bool EditsText(const MSG &message) {
    constexpr WPARAM kSpace = ' ';
    return message.message == WM_CHAR ? message.wParam == '\b' || message.wParam > kSpace
                                      : message.message == WM_KEYDOWN && message.wParam == VK_DELETE;
}

// Up and Down in the field move its number by one.
bool StepNumber(DialogWindow *shown, const MSG &message) {
    const bool up = message.wParam == VK_UP;
    const DialogItem &field = *model::ItemAt(shown->dialog, shown->dialog->focusItem);
    const ControlRecord *bar = dialog_bars::BarInRow(*shown->dialog, field.bounds);
    if (message.message != WM_KEYDOWN || (!up && message.wParam != VK_DOWN) || bar == nullptr) {
        return false;
    }
    user_actions::PostPress(&shown->actions, bar->bounds,
                            {up ? kControlDownButtonPart : kControlUpButtonPart, 0});
    return true;
}

// True when the message has been dealt with. Text that is typed elsewhere goes to the field, and the focus,
// too.
bool TakeKey(DialogWindow *shown, MSG *message) {
    if (const uint8_t character = ButtonKey(*message); character != 0) {
        user_actions::PostKey(&shown->actions, character);
        return true;
    }
    const HWND field = windows::FieldOf(*shown);
    if (field != nullptr && message->hwnd != field && EditsText(*message)) {
        SetFocus(field);
        message->hwnd = field;
    }
    if (field != nullptr && message->hwnd == field && StepNumber(shown, *message)) {
        return true;
    }
    if (message->hwnd == field && IsPress(*message)) {
        user_actions::PostPress(&shown->actions,
                                model::ItemAt(shown->dialog, shown->dialog->focusItem)->bounds, {});
    }
    return false;
}

void Dispatch(DialogWindow *shown, MSG *message) {
    if (message->hwnd != shown->window && IsChild(shown->window, message->hwnd) == 0) {
        TranslateMessage(message);
        DispatchMessageW(message);
        return;
    }
    if (windows::RollPicture(shown, *message) || TakeKey(shown, message)) {
        return;
    }
    shown->clicking = IsPress(*message);
    // A character that the field gets in place of another control is not one of that control's.
    if (message->message == WM_CHAR && message->hwnd == windows::FieldOf(*shown)) {
        DispatchMessageW(message);
    } else if (IsDialogMessageW(shown->window, message) == 0) {
        TranslateMessage(message);
        DispatchMessageW(message);
    }
    shown->clicking = false;
}

}  // namespace

RECT windows::PlaceOf(const DialogWindow &shown, const Rect &bounds) {
    return {Scaled(bounds.left, shown.resolution), Scaled(bounds.top, shown.resolution),
            Scaled(bounds.right, shown.resolution), Scaled(bounds.bottom, shown.resolution)};
}

HWND windows::FieldOf(const DialogWindow &shown) {
    const int16_t item = shown.dialog->focusItem;
    return item == 0 ? nullptr : shown.items[static_cast<size_t>(item - 1)];
}

std::unique_ptr<DialogWindow> windows::MakeDialogWindow(DialogRecord *dialog, HWND owner) {
    const InOwnLook look;
    const Display display = DisplayOf(owner);
    auto shown = std::make_unique<DialogWindow>();
    shown->dialog = dialog;
    shown->owner = owner;
    shown->resolution = display.resolution;
    shown->origin = {display.area.left, display.area.top};
    EmptyTemplate empty = {};
    empty.header.style = kStyle;
    shown->window = CreateDialogIndirectParamW(OwnModule(), &empty.header, owner, TakeMessage,
                                               reinterpret_cast<LPARAM>(shown.get()));
    if (shown->window == nullptr) {
        return nullptr;
    }
    SetWindowTextW(shown->window, UTF16From(MacRomanToUTF8(dialog->window.title)).c_str());
    RECT frame = PlaceOf(*shown, dialog->window.bounds);
    OffsetRect(&frame, shown->origin.x, shown->origin.y);
    AdjustWindowRectEx(&frame, kStyle, FALSE, static_cast<DWORD>(GetWindowLongW(shown->window, GWL_EXSTYLE)));
    SetWindowPos(shown->window, nullptr, frame.left, frame.top, frame.right - frame.left,
                 frame.bottom - frame.top, SWP_NOZORDER | SWP_NOACTIVATE);
    MakeControls(shown.get());
    return shown;
}

// The host's window is active again before the dialog goes, or another program's would be.
void windows::CloseDialogWindow(DialogWindow *shown) {
    if (shown->owner != nullptr) {
        EnableWindow(shown->owner, TRUE);
    }
    if (const HWND window = shown->window; window != nullptr) {
        shown->window = nullptr;
        DestroyWindow(window);
    }
    DeleteObject(shown->font);
}

void windows::Refresh(DialogWindow *shown) {
    if (!shown->stale || shown->window == nullptr) {
        return;
    }
    shown->stale = false;
    RefreshControls(shown);
    if (IsWindowVisible(shown->window) == 0 && shown->dialog->window.visible) {
        // Modal to the host's window.
        if (shown->owner != nullptr) {
            EnableWindow(shown->owner, FALSE);
        }
        ShowWindow(shown->window, SW_SHOW);
        SetForegroundWindow(shown->window);
        SetFocus(FieldOf(*shown));
    }
    const RECT drawn = PlaceOf(*shown, shown->dialog->window.port.drawn);
    InvalidateRect(shown->window, &drawn, FALSE);
}

bool windows::WaitForAction(DialogWindow *shown) {
    const DWORD start = GetTickCount();
    MSG message;
    while (shown->actions.waiting.empty() && shown->window != nullptr) {
        const DWORD waited = GetTickCount() - start;
        if (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
            if (message.message == WM_QUIT) {
                // It is the host's to see.
                PostQuitMessage(static_cast<int>(message.wParam));
                return false;
            }
            Dispatch(shown, &message);
        } else if (waited >= kIdleMilliseconds) {
            break;
        } else {
            MsgWaitForMultipleObjects(0, nullptr, FALSE, kIdleMilliseconds - waited, QS_ALLINPUT);
        }
    }
    return shown->window != nullptr;
}
