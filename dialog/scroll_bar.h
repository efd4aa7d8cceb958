// The dialog's scroll bars: controls that are made by code rather than by the item list.
#pragma once

#include "platform/controls.h"

inline ControlRef NewScrollBar(WindowRef window, const Rect &place, int16_t value, int16_t minimum,
                               int16_t maximum) {
    constexpr uint8_t kNoTitle[] = {0};
    return NewControl(window, &place, kNoTitle, true, value, minimum, maximum, scrollBarProc, 0);
}
