#include "platform/qt/dialog_window.h"

#include <QCheckBox>
#include <QEventLoop>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMoveEvent>
#include <QPainter>
#include <QPushButton>
#include <QScreen>
#include <QTimer>
#include <QWindow>
#include <algorithm>

#include "platform/qt/accessible_names.h"

namespace {

using qt::Action;
using qt::DialogWindow;

// How long the user may do nothing before the host hears of it.
constexpr int kIdleMilliseconds = 50;
constexpr int kSmallestFont = 9;
constexpr int kLongestText = 255;

QRect QRectOf(const Rect &rect) {
    return QRect(QPoint(rect.left, rect.top), QPoint(rect.right - 1, rect.bottom - 1));
}

int16_t Coordinate(int value) {
    return static_cast<int16_t>(std::clamp<int>(value, INT16_MIN, INT16_MAX));
}

QPoint ScreenOrigin() {
    return QGuiApplication::primaryScreen()->geometry().topLeft();
}

// A press of the mouse on the middle of an item, with what came of it.
Action Press(const Rect &bounds, TrackedPart tracked) {
    Action action = {};
    action.event.what = mouseDown;
    action.place = {static_cast<int16_t>((bounds.top + bounds.bottom) / 2),
                    static_cast<int16_t>((bounds.left + bounds.right) / 2)};
    action.tracked = tracked;
    return action;
}

void Post(DialogWindow *shown, const Action &action) {
    shown->input.actions.push_back(action);
}

void PostItemPress(DialogWindow *shown, size_t index) {
    Post(shown, Press(shown->dialog->items[index].bounds, {}));
}

void PostEdit(DialogWindow *shown, size_t index, const QLineEdit &field) {
    Action action = {};
    action.event.what = keyDown;
    action.item = static_cast<int16_t>(index + 1);
    action.text = field.text();
    action.selectionStart = action.selectionEnd = field.cursorPosition();
    Post(shown, action);
}

void PostEscape(DialogWindow *shown) {
    Action action = {};
    action.event.what = keyDown;
    action.event.message = kEscapeCharCode;
    Post(shown, action);
}

QWidget *MakeButton(DialogWindow *shown, size_t index, const QString &title) {
    auto *button = new QPushButton(title, shown->window.get());
    QObject::connect(button, &QPushButton::clicked, [=] { PostItemPress(shown, index); });
    return button;
}

// The plug-in alone checks the box.
QWidget *MakeCheckBox(DialogWindow *shown, size_t index, const QString &title) {
    auto *box = new QCheckBox(title, shown->window.get());
    QObject::connect(box, &QCheckBox::clicked, [=](bool checked) {
        box->setChecked(!checked);
        PostItemPress(shown, index);
    });
    return box;
}

QWidget *MakeLabel(DialogWindow *shown, size_t, const QString &text) {
    return new QLabel(text, shown->window.get());
}

QWidget *MakeField(DialogWindow *shown, size_t index, const QString &text) {
    auto *field = new QLineEdit(text, shown->window.get());
    field->setMaxLength(kLongestText);
    QObject::connect(field, &QLineEdit::textEdited, [=] { PostEdit(shown, index, *field); });
    return field;
}

constexpr struct {
    int16_t kind;
    QWidget *(*make)(DialogWindow *shown, size_t index, const QString &title);
} kMakers[] = {
    {kButtonDialogItem, MakeButton},
    {kCheckBoxDialogItem, MakeCheckBox},
    {kStaticTextDialogItem, MakeLabel},
    {kEditTextDialogItem, MakeField},
};

QString TitleOf(const DialogItem &item) {
    return qt::TextFrom(item.control == nullptr ? item.text.characters : item.control->title);
}

QWidget *MakeItemWidget(DialogWindow *shown, size_t index) {
    const DialogItem &item = shown->dialog->items[index];
    const auto *maker = std::find_if(std::begin(kMakers), std::end(kMakers), [&](const auto &candidate) {
        return candidate.kind == model::KindOf(item);
    });
    if (maker == std::end(kMakers)) {
        return nullptr;
    }
    QWidget *widget = maker->make(shown, index, TitleOf(item));
    widget->setGeometry(QRectOf(item.bounds));
    widget->setAccessibleName(qt::AccessibleName(*shown->dialog, item.bounds, TitleOf(item)));
    widget->installEventFilter(shown->watcher.get());
    return widget;
}

// Rectangles are fixed, so that where the desktop's texts are wider than they allow, all of them get smaller.
void FitFont(const DialogWindow &shown) {
    QFont font = shown.window->font();
    const auto fits = [&](const QWidget *widget) {
        const auto *label = qobject_cast<const QLabel *>(widget);
        return label == nullptr || QFontMetrics(font).horizontalAdvance(label->text()) <= label->width();
    };
    int pixels = QFontInfo(font).pixelSize();
    while (pixels > kSmallestFont && !std::all_of(shown.items.begin(), shown.items.end(), fits)) {
        font.setPixelSize(--pixels);
    }
    shown.window->setFont(font);
}

// From row to row, and from left to right in a row.
void SetTabOrder(const DialogWindow &shown) {
    std::vector<QWidget *> order;
    std::copy_if(
        shown.items.begin(), shown.items.end(), std::back_inserter(order),
        [](const QWidget *widget) { return widget != nullptr && widget->focusPolicy() != Qt::NoFocus; });
    std::sort(order.begin(), order.end(), [](const QWidget *a, const QWidget *b) {
        const QPoint first = a->geometry().center();
        const QPoint second = b->geometry().center();
        return first.y() != second.y() ? first.y() < second.y() : first.x() < second.x();
    });
    for (size_t i = 1; i < order.size(); ++i) {
        QWidget::setTabOrder(order[i - 1], order[i]);
    }
}

// What a scroll bar's own action is to the plug-in.
TrackedPart PartOf(const QScrollBar &bar, int action) {
    switch (action) {
        case QAbstractSlider::SliderSingleStepSub:
            return {kControlUpButtonPart, 0};
        case QAbstractSlider::SliderSingleStepAdd:
            return {kControlDownButtonPart, 0};
        case QAbstractSlider::SliderPageStepSub:
            return {kControlPageUpPart, 0};
        case QAbstractSlider::SliderPageStepAdd:
            return {kControlPageDownPart, 0};
        default:
            return {kControlIndicatorPart, static_cast<int16_t>(bar.sliderPosition())};
    }
}

// Only shown, since steps of the bar's own never come about. Where there are many values they are taken for
// pixels, of which those beside the bar are in view.
int ThumbLength(const ControlRecord &control, int barLength) {
    const int range = control.maximum - control.minimum;
    return range < barLength / 8 ? std::max(range / 4, 1) : barLength;
}

QScrollBar *MakeBar(DialogWindow *shown, const ControlRecord *control) {
    const QRect place = QRectOf(control->bounds);
    const bool across = place.width() >= place.height();
    auto *bar = new QScrollBar(across ? Qt::Horizontal : Qt::Vertical, shown->window.get());
    bar->setGeometry(place);
    bar->setRange(control->minimum, control->maximum);
    bar->setPageStep(ThumbLength(*control, std::max(place.width(), place.height())));
    bar->setTracking(false);
    bar->setContextMenuPolicy(Qt::NoContextMenu);
    const QString name = qt::AccessibleName(*shown->dialog, control->bounds, {});
    bar->setAccessibleName(!name.isEmpty() ? name : across ? "Horizontal position" : "Vertical position");
    bar->installEventFilter(shown->watcher.get());
    QObject::connect(bar, &QScrollBar::actionTriggered, [=](int action) {
        const TrackedPart part = PartOf(*bar, action);
        bar->setSliderPosition(bar->value());
        Post(shown, Press(control->bounds, part));
    });
    bar->show();
    return bar;
}

void PaintPicture(const DialogWindow &shown) {
    const GrafPort &port = shown.dialog->window.port;
    const Rect &drawn = port.drawn;
    if (ports::IsEmpty(drawn)) {
        return;
    }
    QImage image(drawn.right - drawn.left, drawn.bottom - drawn.top, QImage::Format_RGB32);
    for (int y = 0; y < image.height(); ++y) {
        const uint8_t *pixel = ports::PixelAt(port.pixMap, drawn.left, drawn.top + y);
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x, pixel += 4) {
            line[x] = qRgb(pixel[1], pixel[2], pixel[3]);
        }
    }
    QPainter(shown.window.get()).drawImage(drawn.left, drawn.top, image);
}

bool IsCancelKey(const QEvent &event) {
    return event.type() == QEvent::KeyPress &&
           static_cast<const QKeyEvent &>(event).matches(QKeySequence::Cancel);
}

// True when the widget itself must not see the event.
bool WatchWindow(DialogWindow *shown, QEvent *event) {
    switch (event->type()) {
        case QEvent::Paint:
            PaintPicture(*shown);
            return false;
        case QEvent::Move: {
            const QPoint place = shown->window->geometry().topLeft() - ScreenOrigin();
            model::MoveWindowTo(&shown->dialog->window, {Coordinate(place.y()), Coordinate(place.x())});
            return false;
        }
        case QEvent::Close:
            PostEscape(shown);
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
        PostItemPress(shown, static_cast<size_t>(field - shown->items.begin()));
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
            PostEscape(shown);
            return true;
        }
        return receiver == shown->window.get() ? WatchWindow(shown, event)
                                               : WatchWidget(shown, receiver, event);
    }

  private:
    DialogWindow *shown;
};

void RefreshBars(DialogWindow *shown) {
    const auto &controls = shown->dialog->controls;
    std::erase_if(shown->bars, [&](const qt::BarWidget &widget) {
        const bool gone = std::none_of(controls.begin(), controls.end(),
                                       [&](const auto &control) { return control.get() == widget.control; });
        if (gone) {
            delete widget.bar;
        }
        return gone;
    });
    for (const auto &control : controls) {
        if (control->definition != scrollBarProc || !control->visible) {
            continue;
        }
        const bool made = std::any_of(shown->bars.begin(), shown->bars.end(),
                                      [&](const auto &widget) { return widget.control == control.get(); });
        if (!made) {
            shown->bars.push_back({control.get(), MakeBar(shown, control.get())});
        }
    }
    for (const qt::BarWidget &widget : shown->bars) {
        widget.bar->setValue(widget.control->value);
    }
}

void RefreshItem(DialogWindow *shown, size_t index) {
    const DialogItem &item = shown->dialog->items[index];
    QWidget *widget = shown->items[index];
    if (auto *box = qobject_cast<QCheckBox *>(widget)) {
        box->setChecked(item.control->value != 0);
    } else if (auto *button = qobject_cast<QPushButton *>(widget)) {
        button->setText(TitleOf(item));
    } else if (auto *field = qobject_cast<QLineEdit *>(widget);
               field != nullptr && field->text() != TitleOf(item)) {
        field->setText(TitleOf(item));
    }
}

// Only what the plug-in selects is taken over; what the user selects stays.
void RefreshSelection(DialogWindow *shown) {
    if (shown->selectionCount == shown->dialog->selectionCount) {
        return;
    }
    shown->selectionCount = shown->dialog->selectionCount;
    const int16_t item = shown->dialog->focusItem;
    const EditedText &text = model::ItemAt(shown->dialog, item)->text;
    auto *field = qobject_cast<QLineEdit *>(shown->items[static_cast<size_t>(item - 1)]);
    if (field != nullptr) {
        field->setFocus();
        field->setSelection(static_cast<int>(text.selectionStart),
                            static_cast<int>(text.selectionEnd - text.selectionStart));
    }
}

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
    for (size_t i = 0; i < dialog->items.size(); ++i) {
        shown->items.push_back(MakeItemWidget(shown.get(), i));
    }
    FitFont(*shown);
    SetTabOrder(*shown);
    return shown;
}

void qt::Refresh(DialogWindow *shown) {
    if (!shown->stale) {
        return;
    }
    shown->stale = false;
    RefreshBars(shown);
    for (size_t i = 0; i < shown->items.size(); ++i) {
        RefreshItem(shown, i);
    }
    RefreshSelection(shown);
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
