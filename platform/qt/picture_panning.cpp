#include "platform/qt/picture_panning.h"

#include <QMouseEvent>
#include <QWheelEvent>

#include "platform/qt/dialog_window.h"

namespace {

using dialog_bars::PannedPicture;
using qt::DialogWindow;

constexpr double kNotch = 120;  // as Qt counts

Point PointOf(const QPointF &position) {
    const QPoint place = position.toPoint();
    return {static_cast<int16_t>(place.y()), static_cast<int16_t>(place.x())};
}

bool Take(DialogWindow *shown, const PannedPicture &picture, const QMouseEvent &event) {
    if (event.button() != Qt::LeftButton) {
        return false;
    }
    shown->grip = dialog_bars::Take(picture, PointOf(event.position()));
    return shown->grip.held;
}

bool Drag(DialogWindow *shown, const PannedPicture &picture, const QMouseEvent &event) {
    if (shown->grip.held) {
        user_actions::PostMoves(&shown->input.actions,
                                dialog_bars::Drag(picture, shown->grip, PointOf(event.position())));
    }
    return shown->grip.held;
}

// Shift turns the wheel sideways.
bool Roll(DialogWindow *shown, const PannedPicture &picture, const QWheelEvent &event) {
    if (!ports::Contains(picture.place, PointOf(event.position()))) {
        return false;
    }
    const bool exact = !event.pixelDelta().isNull();
    const QPointF turned = exact ? QPointF(event.pixelDelta()) : QPointF(event.angleDelta()) / kNotch;
    const QPointF way = (event.modifiers() & Qt::ShiftModifier) != 0 ? turned.transposed() : turned;
    user_actions::PostMoves(&shown->input.actions, exact ? dialog_bars::Scroll(picture, -way.x(), -way.y())
                                                         : dialog_bars::Roll(picture, -way.x(), -way.y()));
    return true;
}

void ShowHand(const DialogWindow &shown, const PannedPicture &picture, const QMouseEvent &event) {
    shown.window->setCursor(shown.grip.held                                         ? Qt::ClosedHandCursor
                            : dialog_bars::Pans(picture, PointOf(event.position())) ? Qt::OpenHandCursor
                                                                                    : Qt::ArrowCursor);
}

}  // namespace

bool qt::PanPicture(DialogWindow *shown, QEvent *event) {
    const QEvent::Type type = event->type();
    if (type == QEvent::Wheel) {
        return Roll(shown, dialog_bars::PictureOf(*shown->dialog), *static_cast<QWheelEvent *>(event));
    }
    if (type != QEvent::MouseButtonPress && type != QEvent::MouseMove && type != QEvent::MouseButtonRelease) {
        return false;
    }
    const PannedPicture picture = dialog_bars::PictureOf(*shown->dialog);
    const auto &mouse = *static_cast<QMouseEvent *>(event);
    const bool taken =
        type == QEvent::MouseButtonPress ? Take(shown, picture, mouse) : Drag(shown, picture, mouse);
    shown->grip.held = shown->grip.held && type != QEvent::MouseButtonRelease;
    ShowHand(*shown, picture, mouse);
    return taken;
}
