// The back end that shows dialogs in windows of the host's process. Owns the windows of open dialogs.
#include <algorithm>
#include <cstring>

#include "platform/dialog_backend.h"
#include "platform/windows/dialog_window.h"
#include "platform/windows/display.h"

namespace {

using windows::DialogWindow;
using windows::InOwnDots;

HWND hostsWindow;
std::vector<std::unique_ptr<DialogWindow>> dialogWindows;

DialogWindow *WindowOf(const DialogRecord *dialog) {
    const auto found = std::find_if(dialogWindows.begin(), dialogWindows.end(),
                                    [=](const auto &window) { return window->dialog == dialog; });
    return found == dialogWindows.end() ? nullptr : found->get();
}

Rect Screen() {
    const InOwnDots dots;
    const windows::Display display = windows::DisplayOf(hostsWindow);
    const auto length = [&](LONG dotsLong) {
        return static_cast<int16_t>(std::min(windows::Unscaled(dotsLong, display.resolution), INT16_MAX));
    };
    return {0, 0, length(display.area.bottom - display.area.top),
            length(display.area.right - display.area.left)};
}

bool Open(DialogRecord *dialog) {
    const InOwnDots dots;
    std::unique_ptr<DialogWindow> window = windows::MakeDialogWindow(dialog, hostsWindow);
    if (window == nullptr) {
        return false;
    }
    dialogWindows.push_back(std::move(window));
    return true;
}

void Close(DialogRecord *dialog) {
    const InOwnDots dots;
    if (DialogWindow *shown = WindowOf(dialog); shown != nullptr) {
        windows::CloseDialogWindow(shown);
        std::erase_if(dialogWindows, [=](const auto &window) { return window.get() == shown; });
    }
}

bool NextEvent(DialogRecord *dialog, EventRecord *event) {
    const InOwnDots dots;
    DialogWindow *shown = WindowOf(dialog);
    *event = {};
    if (shown->actions.waiting.empty()) {
        windows::Refresh(shown);
        if (!windows::WaitForAction(shown)) {
            return false;
        }
    }
    if (shown->actions.waiting.empty()) {
        return true;
    }
    shown->stale = true;
    user_actions::Take(&shown->actions, dialog, event);
    return true;
}

void Edit(DialogRecord *dialog, int16_t item, const EventRecord &event) {
    user_actions::Edit(WindowOf(dialog)->actions, dialog, item, event);
}

constexpr DialogBackend kScreen = {
    Screen,
    Open,
    Close,
    NextEvent,
    [](ControlRecord *control) { return WindowOf(control->dialog)->actions.current.tracked; },
    Edit,
    // The system moves the window and reports it afterwards.
    [](DialogRecord *, Point start) { return start; },
};

}  // namespace

const DialogBackend &SystemDialogBackend() {
    return kScreen;
}

// It begins with the window's handle.
void UsePlatformData(OSType, const void *platformData) {
    uintptr_t handle = 0;
    if (platformData != nullptr) {
        std::memcpy(&handle, platformData, sizeof handle);
    }
    const HWND window = reinterpret_cast<HWND>(handle);
    hostsWindow = window != nullptr && IsWindow(window) != 0 ? GetAncestor(window, GA_ROOT) : nullptr;
}
