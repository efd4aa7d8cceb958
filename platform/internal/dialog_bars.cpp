#include "platform/internal/dialog_bars.h"

#include <algorithm>
#include <cmath>

namespace {

// Chosen: eight notches of the wheel show what lies one picture further.
constexpr double kNotchesPerPicture = 8;

bool IsShownBar(const ControlRecord &control) {
    return control.definition == scrollBarProc && control.visible;
}

int ValueOf(const ControlRecord *bar) {
    return bar == nullptr ? 0 : bar->value;
}

dialog_bars::Moves MovesTo(const dialog_bars::PannedPicture &picture, double across, double upright) {
    dialog_bars::Moves moves;
    for (const auto &[bar, wanted] :
         {std::pair(picture.across, across), std::pair(picture.upright, upright)}) {
        if (bar == nullptr) {
            continue;
        }
        const auto value =
            static_cast<int16_t>(std::lround(std::clamp<double>(wanted, bar->minimum, bar->maximum)));
        if (value != bar->value) {
            moves.push_back({bar, value});
        }
    }
    return moves;
}

}  // namespace

const ControlRecord *dialog_bars::BarInRow(const DialogRecord &dialog, const Rect &field) {
    const auto &controls = dialog.controls;
    const auto found = std::find_if(controls.begin(), controls.end(), [&](const auto &control) {
        return IsShownBar(*control) && control->bounds.top < field.bottom &&
               field.top < control->bounds.bottom;
    });
    return found == controls.end() ? nullptr : found->get();
}

dialog_bars::PannedPicture dialog_bars::PictureOf(const DialogRecord &dialog) {
    PannedPicture picture = {};
    for (const DialogItem &item : dialog.items) {
        if (model::KindOf(item) == kUserDialogItem && ports::Holds(dialog.window.port.drawn, item.bounds)) {
            picture.place = item.bounds;
        }
    }
    for (const auto &control : dialog.controls) {
        const Rect &bar = control->bounds;
        if (!IsShownBar(*control)) {
            continue;
        }
        if (bar.left == picture.place.left && bar.top >= picture.place.bottom) {
            picture.across = control.get();
        } else if (bar.top == picture.place.top && bar.left >= picture.place.right) {
            picture.upright = control.get();
        }
    }
    return picture;
}

bool dialog_bars::Pans(const PannedPicture &picture, Point mouse) {
    return (picture.across != nullptr || picture.upright != nullptr) && ports::Contains(picture.place, mouse);
}

dialog_bars::Grip dialog_bars::Take(const PannedPicture &picture, Point mouse) {
    return {Pans(picture, mouse), mouse, ValueOf(picture.across), ValueOf(picture.upright)};
}

dialog_bars::Moves dialog_bars::Drag(const PannedPicture &picture, const Grip &grip, Point mouse) {
    return MovesTo(picture, grip.across - (mouse.h - grip.mouse.h), grip.upright - (mouse.v - grip.mouse.v));
}

dialog_bars::Moves dialog_bars::Scroll(const PannedPicture &picture, double across, double down) {
    return MovesTo(picture, ValueOf(picture.across) + across, ValueOf(picture.upright) + down);
}

dialog_bars::Moves dialog_bars::Roll(const PannedPicture &picture, double across, double down) {
    const Rect &place = picture.place;
    return Scroll(picture, across / kNotchesPerPicture * (place.right - place.left),
                  down / kNotchesPerPicture * (place.bottom - place.top));
}
