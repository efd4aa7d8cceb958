#include "platform/qt/dialog_window.h"

#include <QEventLoop>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QWindow>
#include <algorithm>

#include "platform/qt/accessible_names.h"
#include "platform/qt/bar_widgets.h"
#include "platform/qt/item_widgets.h"
#include "platform/qt/window_picture.h"

namespace {

using qt::DialogWindow;

// How long the user may do nothing before the host hears of it.
constexpr int kIdleMilliseconds = 50;

int16_t Coordinate(int value) {
    return static_cast<int16_t>(std::clamp<int>(value, INT16_MIN, INT16_MAX));
}

QPoint ScreenOrigin() {
    return QGuiApplication::primaryScreen()->geometry().topLeft();
}

bool IsCancelKey(const QEvent &event) {
    return event.type() == QEvent::KeyPress &&
           static_cast<const QKeyEvent &>(event).matches(QKeySequence::Cancel);
}

// True when the widget itself must not see the event.
bool WatchWindow(DialogWindow *shown, QEvent *event) {
    switch (event->type()) {
        case QEvent::Paint:
            qt::PaintPicture(shown->dialog->window.port, shown->window.get());
            return false;
        case QEvent::Move: {
            const QPoint place = shown->window->geometry().topLeft() - ScreenOrigin();
            model::MoveWindowTo(&shown->dialog->window, {Coordinate(place.y()), Coordinate(place.x())});
            return false;
        }
        case QEvent::Close:
            qt::PostEscape(&shown->input);
            event->ignore();
            return true;
        default:
            return false;
    }
}

bool WatchWidget(DialogWindow *shown, QObject *receiver, QEvent *event) {
    const bool press =
        event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick;
    if (press && qobject_cast<QLineEdit *>(receiver) != nullptr) {
        const auto field = std::find(shown->items.begin(), shown->items.end(), receiver);
        const auto index = static_cast<size_t>(field - shown->items.begin());
        qt::PostPress(&shown->input, shown->dialog->items[index].bounds, {});
    }
    // A bar that is held down would step on and on by its timer.
    return event->type() == QEvent::Timer && qobject_cast<QScrollBar *>(receiver) != nullptr;
}

// The one class that Qt asks for.
class Watcher : public QObject {
  public:
    explicit Watcher(DialogWindow *watched) : shown(watched) {}

    bool eventFilter(QObject *receiver, QEvent *event) override {
        if (receiver == shown->window->windowHandle()) {
            return qt::HoldBack(&shown->input, *event);
        }
        if (IsCancelKey(*event)) {
            qt::PostEscape(&shown->input);
            return true;
        }
        return receiver == shown->window.get() ? WatchWindow(shown, event)
                                               : WatchWidget(shown, receiver, event);
    }

  private:
    DialogWindow *shown;
};

void ShowFirst(DialogWindow *shown) {
    if (DialogItem *item = model::ItemAt(shown->dialog, shown->dialog->defaultItem); item != nullptr) {
        auto *button =
            qobject_cast<QPushButton *>(shown->items[static_cast<size_t>(shown->dialog->defaultItem - 1)]);
        if (button != nullptr) {
            button->setDefault(true);
        }
    }
    shown->window->show();
    shown->window->windowHandle()->installEventFilter(shown->watcher.get());
}

}  // namespace

std::unique_ptr<DialogWindow> qt::MakeDialogWindow(DialogRecord *dialog) {
    auto shown = std::make_unique<DialogWindow>();
    shown->dialog = dialog;
    shown->window = std::make_unique<QDialog>();
    shown->watcher = std::make_unique<Watcher>(shown.get());
    QDialog *window = shown->window.get();
    window->setWindowTitle(TextFrom(dialog->window.title));
    window->setAccessibleName(window->windowTitle());
    window->setWindowModality(Qt::ApplicationModal);
    const Rect bounds = dialog->window.bounds;
    window->setFixedSize(bounds.right - bounds.left, bounds.bottom - bounds.top);
    window->move(ScreenOrigin() + QPoint(bounds.left, bounds.top));
    window->installEventFilter(shown->watcher.get());
    MakeItemWidgets(shown.get());
    return shown;
}

void qt::Refresh(DialogWindow *shown) {
    if (!shown->stale) {
        return;
    }
    shown->stale = false;
    RefreshBars(shown);
    RefreshItems(shown);
    if (shown->window->isHidden() && shown->dialog->window.visible) {
        ShowFirst(shown);
    }
    shown->window->update();
}

void qt::WaitForAction(DialogWindow *shown) {
    ReleaseHeld(&shown->input, shown->window->windowHandle());
    if (!shown->input.actions.empty()) {
        return;
    }
    bool idle = false;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, [&] { idle = true; });
    timer.start(kIdleMilliseconds);
    while (!idle && shown->input.actions.empty()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}
