#include "dialog/pan_bar.h"

#include <algorithm>

#include "dialog/scroll_bar.h"

namespace {

// Arrows and page clicks stop one pixel short; only the thumb reaches the end.
int16_t OffsetAfter(const PanBar &pan, int16_t part) {
    const int32_t last = pan.excess - 1;
    const int32_t page = pan.preview / 2;
    int32_t offset = pan.offset;
    switch (part) {
        case kControlUpButtonPart:
            offset = std::max(offset - 1, 0);
            break;
        case kControlDownButtonPart:
            offset += offset < last ? 1 : 0;
            break;
        case kControlPageUpPart:
            offset = std::max(offset - page, 0);
            break;
        case kControlPageDownPart:
            offset = std::min(offset + page, last);
            break;
        case kControlIndicatorPart:
            offset = GetControlValue(pan.bar);
            break;
        default:
            break;
    }
    return static_cast<int16_t>(offset);
}

}  // namespace

PanBar MakePanBar(WindowRef window, const Rect &place, int32_t imageSize, int32_t previewSize) {
    PanBar pan = {nullptr, 0, static_cast<int16_t>(imageSize - previewSize),
                  static_cast<int16_t>(previewSize)};
    if (pan.excess >= 1) {
        pan.offset = static_cast<int16_t>(pan.excess / 2);
        pan.bar = NewScrollBar(window, place, pan.offset, 0, pan.excess);
    }
    return pan;
}

void DisposePanBar(PanBar *pan) {
    if (pan->bar != nullptr) {
        DisposeControl(pan->bar);
    }
}

void TrackPanBar(PanBar *pan, Point point) {
    pan->offset = OffsetAfter(*pan, TrackControl(pan->bar, point, nullptr));
    SetControlValue(pan->bar, pan->offset);
}
