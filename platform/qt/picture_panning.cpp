#include "platform/qt/picture_panning.h"

#include <QMouseEvent>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "platform/qt/dialog_window.h"
#include "platform/qt/rectangles.h"

namespace {

using qt::DialogWindow;

// Chosen: eight notches of the wheel show what lies one picture further.
constexpr double kNotchesPerPicture = 8;
constexpr double kNotch = 120;  // as Qt counts

struct PannedPicture {
    QRect place;
    const ControlRecord *across = nullptr, *upright = nullptr;  // null where all of it is in view
};

// The item in the drawn part of the window, and the bars that begin where it does.
PannedPicture PictureOf(const DialogRecord &dialog) {
    PannedPicture picture;
    const QRect drawn = qt::QRectOf(dialog.window.port.drawn);
    for (const DialogItem &item : dialog.items) {
        if (model::KindOf(item) == kUserDialogItem && drawn.contains(qt::QRectOf(item.bounds))) {
            picture.place = qt::QRectOf(item.bounds);
        }
    }
    for (const auto &control : dialog.controls) {
        const QRect bar = qt::QRectOf(control->bounds);
        if (control->definition != scrollBarProc || !control->visible) {
            continue;
        }
        if (bar.left() == picture.place.left() && bar.top() > picture.place.bottom()) {
            picture.across = control.get();
        } else if (bar.top() == picture.place.top() && bar.left() > picture.place.right()) {
            picture.upright = control.get();
        }
    }
    return picture;
}

int ValueOf(const ControlRecord *bar) {
    return bar == nullptr ? 0 : bar->value;
}

void MoveBar(DialogWindow *shown, const ControlRecord *bar, double wanted) {
    if (bar == nullptr) {
        return;
    }
    const auto value =
        static_cast<int16_t>(std::lround(std::clamp<double>(wanted, bar->minimum, bar->maximum)));
    if (value != bar->value) {
        qt::PostPress(&shown->input, bar->bounds, {kControlIndicatorPart, value});
    }
}

bool Take(DialogWindow *shown, const PannedPicture &picture, const QMouseEvent &event) {
    const QPoint place = event.position().toPoint();
    const bool pans = picture.across != nullptr || picture.upright != nullptr;
    if (event.button() != Qt::LeftButton || !pans || !picture.place.contains(place)) {
        return false;
    }
    shown->grip = {true, place, ValueOf(picture.across), ValueOf(picture.upright)};
    return true;
}

bool Drag(DialogWindow *shown, const PannedPicture &picture, const QMouseEvent &event) {
    if (shown->grip.held) {
        const QPoint way = event.position().toPoint() - shown->grip.place;
        MoveBar(shown, picture.across, shown->grip.across - way.x());
        MoveBar(shown, picture.upright, shown->grip.upright - way.y());
    }
    return shown->grip.held;
}

// Shift turns the wheel sideways.
bool Roll(DialogWindow *shown, const PannedPicture &picture, const QWheelEvent &event) {
    if (!picture.place.contains(event.position().toPoint())) {
        return false;
    }
    const bool exact = !event.pixelDelta().isNull();
    const QPointF turned =
        exact ? QPointF(event.pixelDelta()) : QPointF(event.angleDelta()) / kNotch / kNotchesPerPicture;
    QPointF way = (event.modifiers() & Qt::ShiftModifier) != 0 ? turned.transposed() : turned;
    if (!exact) {
        way = {way.x() * picture.place.width(), way.y() * picture.place.height()};
    }
    MoveBar(shown, picture.across, ValueOf(picture.across) - way.x());
    MoveBar(shown, picture.upright, ValueOf(picture.upright) - way.y());
    return true;
}

void ShowHand(const DialogWindow &shown, const PannedPicture &picture, const QMouseEvent &event) {
    const bool pans = (picture.across != nullptr || picture.upright != nullptr) &&
                      picture.place.contains(event.position().toPoint());
    shown.window->setCursor(shown.grip.held ? Qt::ClosedHandCursor
                            : pans          ? Qt::OpenHandCursor
                                            : Qt::ArrowCursor);
}

}  // namespace

bool qt::PanPicture(DialogWindow *shown, QEvent *event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::Wheel) {
        return Roll(shown, PictureOf(*shown->dialog), *static_cast<QWheelEvent *>(event));
    }
    if (type != QEvent::MouseButtonPress && type != QEvent::MouseMove && type != QEvent::MouseButtonRelease) {
        return false;
    }
    const PannedPicture picture = PictureOf(*shown->dialog);
    const auto &mouse = *static_cast<QMouseEvent *>(event);
    const bool taken =
        type == QEvent::MouseButtonPress ? Take(shown, picture, mouse) : Drag(shown, picture, mouse);
    shown->grip.held = shown->grip.held && type != QEvent::MouseButtonRelease;
    ShowHand(*shown, picture, mouse);
    return taken;
}
