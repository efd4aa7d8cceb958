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
#include <iterator>

#include "platform/qt/accessible_names.h"
#include "platform/qt/bar_widgets.h"
#include "platform/qt/item_widgets.h"
#include "platform/qt/number_field.h"
#include "platform/qt/picture_panning.h"
#include "platform/qt/rectangles.h"
#include "platform/qt/window_picture.h"

namespace {

using qt::DialogWindow;

// How long to wait for the user before the host gets an idle event.
constexpr int kIdleMilliseconds = 50;

int16_t Coordinate(int value) {
    return static_cast<int16_t>(std::clamp<int>(value, INT16_MIN, INT16_MAX));
}

QPoint ScreenOrigin() {
    return QGuiApplication::primaryScreen()->geometry().topLeft();
}

// Keys that press a button wherever the focus is.
constexpr struct {
    int key;
    Qt::KeyboardModifiers modifiers;  // required modifiers
    uint8_t character;
} kButtonKeys[] = {
    {Qt::Key_Return, Qt::NoModifier, kReturnCharCode},
    {Qt::Key_Enter, Qt::NoModifier, kEnterCharCode},
    {Qt::Key_Escape, Qt::NoModifier, kEscapeCharCode},
    {Qt::Key_Period, Qt::ControlModifier, kEscapeCharCode},
};

bool PressButtonKey(DialogWindow *shown, const QKeyEvent &event) {
    const auto *found = std::find_if(std::begin(kButtonKeys), std::end(kButtonKeys), [&](const auto &entry) {
        return entry.key == event.key() && (event.modifiers() & entry.modifiers) == entry.modifiers;
    });
    if (found == std::end(kButtonKeys)) {
        return false;
    }
    user_actions::PostKey(&shown->input.actions, found->character);
    return true;
}

// Space does not: it presses the focused widget.
bool EditsText(const QKeyEvent &event) {
    const bool command =
        (event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) != 0;
    const bool prints = !event.text().isEmpty() && event.text().front().isPrint();
    return event.key() == Qt::Key_Backspace || event.key() == Qt::Key_Delete ||
           (prints && !command && event.key() != Qt::Key_Space);
}

// Text typed elsewhere goes to the field, and the focus moves there.
bool TypeIntoField(DialogWindow *shown, QKeyEvent *event) {
    const int16_t item = shown->dialog->focusItem;
    auto *field =
        item == 0 ? nullptr : qobject_cast<QLineEdit *>(shown->items[static_cast<size_t>(item - 1)]);
    if (field == nullptr || field == shown->window->focusWidget() || !EditsText(*event)) {
        return false;
    }
    field->setFocus();
    if (shown->selectionStart >= 0) {
        field->setSelection(shown->selectionStart, shown->selectionLength);
    }
    QCoreApplication::sendEvent(field, event);
    return true;
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
            user_actions::PostKey(&shown->input.actions, kEscapeCharCode);
            event->ignore();
            return true;
        default:
            return qt::PanPicture(shown, event);
    }
}

void WatchField(DialogWindow *shown, QLineEdit *field, const QEvent &event) {
    switch (event.type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick: {
            const auto found = std::find(shown->items.begin(), shown->items.end(), field);
            const auto index = static_cast<size_t>(found - shown->items.begin());
            user_actions::PostPress(&shown->input.actions, shown->dialog->items[index].bounds, {});
            break;
        }
        // The field forgets its selection when it loses the focus.
        case QEvent::FocusOut:
            shown->selectionStart = field->selectionStart();
            shown->selectionLength = field->selectionLength();
            if (static_cast<const QFocusEvent &>(event).reason() != Qt::ActiveWindowFocusReason &&
                qt::SettleNumber(shown, *field)) {
                shown->selectionStart = 0;
                shown->selectionLength = field->maxLength();
            }
            break;
        default:
            break;
    }
}

bool WatchWidget(DialogWindow *shown, QObject *receiver, QEvent *event) {
    if (auto *field = qobject_cast<QLineEdit *>(receiver)) {
        WatchField(shown, field, *event);
    }
    // A bar's timer would keep stepping while the mouse is down.
    return event->type() == QEvent::Timer && qobject_cast<QScrollBar *>(receiver) != nullptr;
}

// The one class that Qt requires.
class Watcher : public QObject {
  public:
    explicit Watcher(DialogWindow *watched) : shown(watched) {}

    bool eventFilter(QObject *receiver, QEvent *event) override {
        if (receiver == shown->window->windowHandle()) {
            return qt::HoldBack(&shown->input, *event);
        }
        if (event->type() == QEvent::KeyPress) {
            auto *key = static_cast<QKeyEvent *>(event);
            const auto *field = qobject_cast<QLineEdit *>(receiver);
            if (PressButtonKey(shown, *key) || TypeIntoField(shown, key) ||
                (field != nullptr && qt::StepNumber(shown, *field, key->key()))) {
                return true;
            }
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
    const QRect contents = QRectOf(bounds).translated(ScreenOrigin());
    window->setFixedSize(contents.size());
    // move() would position the window's frame.
    window->setGeometry(contents);
    window->setMouseTracking(true);
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
    if (!shown->input.actions.waiting.empty()) {
        return;
    }
    bool idle = false;
    QTimer timer;
    timer.setSingleShot(true);
    QObject::connect(&timer, &QTimer::timeout, [&] { idle = true; });
    timer.start(kIdleMilliseconds);
    while (!idle && shown->input.actions.waiting.empty()) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
}
