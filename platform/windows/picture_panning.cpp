// Drags and turns of the wheel over a dialog's picture: they move the bars beside and below it.
#include "platform/windows/dialog_window.h"
#include "platform/windows/display.h"

namespace {

using dialog_bars::PannedPicture;
using windows::DialogWindow;

// Of a message about the mouse, in the dialog's pixels.
Point PlaceIn(const DialogWindow &shown, POINT place) {
    return {static_cast<int16_t>(windows::Unscaled(static_cast<int>(place.y), shown.resolution)),
            static_cast<int16_t>(windows::Unscaled(static_cast<int>(place.x), shown.resolution))};
}

POINT PlaceFrom(LPARAM packed) {
    return {static_cast<int16_t>(LOWORD(packed)), static_cast<int16_t>(HIWORD(packed))};
}

}  // namespace

bool windows::PanPicture(DialogWindow *shown, UINT message, LPARAM place) {
    const PannedPicture picture = dialog_bars::PictureOf(*shown->dialog);
    const Point mouse = PlaceIn(*shown, PlaceFrom(place));
    if (message == WM_LBUTTONDOWN || message == WM_LBUTTONDBLCLK) {
        shown->grip = dialog_bars::Take(picture, mouse);
        if (shown->grip.held) {
            SetCapture(shown->window);
        }
    } else if (shown->grip.held) {
        user_actions::PostMoves(&shown->actions, dialog_bars::Drag(picture, shown->grip, mouse));
    }
    const bool held = shown->grip.held;
    if (held && message == WM_LBUTTONUP) {
        ReleaseCapture();
    }
    return held;
}

// Shift turns the wheel sideways.
bool windows::RollPicture(DialogWindow *shown, const MSG &message) {
    const bool sideways = message.message == WM_MOUSEHWHEEL;
    if (message.message != WM_MOUSEWHEEL && !sideways) {
        return false;
    }
    POINT place = PlaceFrom(message.lParam);
    ScreenToClient(shown->window, &place);
    const PannedPicture picture = dialog_bars::PictureOf(*shown->dialog);
    if (!ports::Contains(picture.place, PlaceIn(*shown, place))) {
        return false;
    }
    // Away from the user and to the right count as more.
    const double turned = GET_WHEEL_DELTA_WPARAM(message.wParam) / double{WHEEL_DELTA};
    const double way = sideways ? turned : -turned;
    const bool across = sideways || (LOWORD(message.wParam) & MK_SHIFT) != 0;
    user_actions::PostMoves(&shown->actions, dialog_bars::Roll(picture, across ? way : 0, across ? 0 : way));
    return true;
}

bool windows::ShowHand(const DialogWindow &shown) {
    POINT place;
    if (GetCursorPos(&place) == 0 || ScreenToClient(shown.window, &place) == 0 ||
        !dialog_bars::Pans(dialog_bars::PictureOf(*shown.dialog), PlaceIn(shown, place))) {
        return false;
    }
    SetCursor(LoadCursorW(nullptr, IDC_SIZEALL));
    return true;
}
