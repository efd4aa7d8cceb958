// Owns the application and the windows of open dialogs.
#include "platform/qt/screen_backend.h"

#include <QApplication>
#include <QScreen>
#include <algorithm>

#include "platform/qt/dialog_window.h"

namespace {

// Never destroyed: when the display goes away Qt calls exit, and widgets cannot be destroyed without a
// display.
auto &windows = *new std::vector<std::unique_ptr<qt::DialogWindow>>;

// Lives as long as the process, like Qt's own state.
void NeedApplication() {
    if (QCoreApplication::instance() != nullptr) {
        return;
    }
    static int count = 1;
    static char name[] = "hymedian";
    static char *arguments[] = {name, nullptr};
    [[maybe_unused]] static auto *application = new QApplication(count, arguments);
    QApplication::setQuitOnLastWindowClosed(false);
}

qt::DialogWindow *WindowOf(const DialogRecord *dialog) {
    const auto found = std::find_if(windows.begin(), windows.end(),
                                    [=](const auto &window) { return window->dialog == dialog; });
    return found == windows.end() ? nullptr : found->get();
}

Rect Screen() {
    NeedApplication();
    const QSize size = QGuiApplication::primaryScreen()->geometry().size();
    return {0, 0, static_cast<int16_t>(std::min(size.height(), INT16_MAX)),
            static_cast<int16_t>(std::min(size.width(), INT16_MAX))};
}

bool Open(DialogRecord *dialog) {
    NeedApplication();
    windows.push_back(qt::MakeDialogWindow(dialog));
    return true;
}

void Close(DialogRecord *dialog) {
    std::erase_if(windows, [=](const auto &window) { return window->dialog == dialog; });
}

bool NextEvent(DialogRecord *dialog, EventRecord *event) {
    qt::DialogWindow *shown = WindowOf(dialog);
    user_actions::Queue &actions = shown->input.actions;
    *event = {};
    if (actions.waiting.empty()) {
        qt::Refresh(shown);
        qt::WaitForAction(shown);
    }
    if (actions.waiting.empty()) {
        return true;
    }
    shown->stale = true;
    user_actions::Take(&actions, dialog, event);
    return true;
}

void Edit(DialogRecord *dialog, int16_t item, const EventRecord &event) {
    user_actions::Edit(WindowOf(dialog)->input.actions, dialog, item, event);
}

constexpr DialogBackend kScreen = {
    Screen,
    Open,
    Close,
    NextEvent,
    [](ControlRecord *control) { return WindowOf(control->dialog)->input.actions.current.tracked; },
    Edit,
    // The window manager moves the window; Qt reports it afterwards.
    [](DialogRecord *, Point start) { return start; },
};

}  // namespace

const DialogBackend &qt::ScreenDialogs() {
    return kScreen;
}
