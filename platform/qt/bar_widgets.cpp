#include "platform/qt/bar_widgets.h"

#include <algorithm>

#include "platform/qt/accessible_names.h"
#include "platform/qt/rectangles.h"

namespace {

using qt::DialogWindow;

// What a scroll bar's own action means to the plug-in.
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

QScrollBar *MakeBar(DialogWindow *shown, const ControlRecord *control) {
    const QRect place = qt::QRectOf(control->bounds);
    const bool across = place.width() >= place.height();
    auto *bar = new QScrollBar(across ? Qt::Horizontal : Qt::Vertical, shown->window.get());
    bar->setGeometry(place);
    bar->setRange(control->minimum, control->maximum);
    bar->setPageStep(model::ThumbLength(*control));
    bar->setTracking(false);
    bar->setContextMenuPolicy(Qt::NoContextMenu);
    const QString name = qt::AccessibleName(*shown->dialog, control->bounds, {});
    bar->setAccessibleName(!name.isEmpty() ? name : across ? "Horizontal position" : "Vertical position");
    bar->installEventFilter(shown->watcher.get());
    QObject::connect(bar, &QScrollBar::actionTriggered, [=](int action) {
        const TrackedPart part = PartOf(*bar, action);
        bar->setSliderPosition(bar->value());
        user_actions::PostPress(&shown->input.actions, control->bounds, part);
    });
    bar->show();
    return bar;
}

}  // namespace

void qt::RefreshBars(DialogWindow *shown) {
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
