#include "platform/controls.h"

#include <algorithm>

#include "platform/dialog_backend.h"
#include "platform/internal/dialog_model.h"

namespace {

ControlRecord *Existing(ControlRef control) {
    for (const DialogRecord *dialog : model::OpenDialogs()) {
        for (const auto &candidate : dialog->controls) {
            if (candidate.get() == control) {
                return control;
            }
        }
    }
    return nullptr;
}

}  // namespace

ControlRecord *model::AddControl(DialogRecord *dialog, ControlRecord control) {
    control.dialog = dialog;
    dialog->controls.push_back(std::make_unique<ControlRecord>(std::move(control)));
    return dialog->controls.back().get();
}

int32_t model::PlaceOf(const DialogRecord &dialog, const ControlRecord *control) {
    const auto found = std::find_if(dialog.controls.begin(), dialog.controls.end(),
                                    [=](const auto &owned) { return owned.get() == control; });
    return found == dialog.controls.end() ? -1 : static_cast<int32_t>(found - dialog.controls.begin());
}

// A large range is taken to be in pixels, with the bar's length of them in view.
int model::ThumbLength(const ControlRecord &control) {
    const Rect &bounds = control.bounds;
    const int barLength = std::max(bounds.right - bounds.left, bounds.bottom - bounds.top);
    const int range = control.maximum - control.minimum;
    return range < barLength / 8 ? std::max(range / 4, 1) : barLength;
}

void model::CopyTitle(const std::string &text, StringPtr title) {
    const size_t length = std::min(text.size(), kLongestText);
    title[0] = static_cast<uint8_t>(length);
    std::copy_n(text.begin(), length, title + 1);
}

std::string model::TitleFrom(ConstStringPtr title) {
    return std::string(title + 1, title + 1 + title[0]);
}

ControlRef NewControl(WindowRef window, const Rect *bounds, ConstStringPtr title, Boolean visible,
                      int16_t value, int16_t minimum, int16_t maximum, int16_t definition,
                      intptr_t reference) {
    for (DialogRecord *dialog : model::OpenDialogs()) {
        if (&dialog->window == window) {
            return model::AddControl(dialog, {dialog, *bounds, model::TitleFrom(title), definition, value,
                                              minimum, maximum, visible != 0, reference});
        }
    }
    return nullptr;
}

void DisposeControl(ControlRef control) {
    if (ControlRecord *existing = Existing(control); existing != nullptr) {
        std::erase_if(existing->dialog->controls, [&](const auto &owned) { return owned.get() == control; });
    }
}

int16_t TrackControl(ControlRef control, Point point, ControlActionUPP) {
    ControlRecord *existing = Existing(control);
    if (existing == nullptr || !existing->visible || !ports::Contains(existing->bounds, point)) {
        return 0;
    }
    const TrackedPart tracked = CurrentDialogBackend().track(existing);
    if (tracked.part == kControlIndicatorPart) {
        SetControlValue(control, tracked.value);
    }
    return tracked.part;
}

int16_t GetControlValue(ControlRef control) {
    const ControlRecord *existing = Existing(control);
    return existing == nullptr ? int16_t{0} : existing->value;
}

void SetControlValue(ControlRef control, int16_t value) {
    if (ControlRecord *existing = Existing(control); existing != nullptr) {
        existing->value = std::max(existing->minimum, std::min(existing->maximum, value));
    }
}

void GetControlTitle(ControlRef control, StringPtr title) {
    const ControlRecord *existing = Existing(control);
    model::CopyTitle(existing == nullptr ? "" : existing->title, title);
}

void SetControlTitle(ControlRef control, ConstStringPtr title) {
    if (ControlRecord *existing = Existing(control); existing != nullptr) {
        existing->title = model::TitleFrom(title);
    }
}
