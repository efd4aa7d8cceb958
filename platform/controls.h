// The Control Manager. A control is also gone with its window; calls about one that is gone do nothing.
#pragma once

#include "platform/windows.h"

#pragma GCC visibility push(default)

struct ControlRecord;
using ControlRef = ControlRecord *;
using ControlActionUPP = void (*)(ControlRef control, int16_t part);

constexpr int16_t scrollBarProc = 16;

enum : int16_t {
    kControlUpButtonPart = 20,
    kControlDownButtonPart = 21,
    kControlPageUpPart = 22,
    kControlPageDownPart = 23,
    kControlIndicatorPart = 129,
};

extern "C" {

ControlRef NewControl(WindowRef window, const Rect *bounds, ConstStringPtr title, Boolean visible,
                      int16_t value, int16_t minimum, int16_t maximum, int16_t definition,
                      intptr_t reference);
void DisposeControl(ControlRef control);

// The part that was pressed and let go at `point`, in local coordinates; 0 for none. The thumb leaves its new
// value in the control, no other part changes it. Without an action procedure nothing happens while the
// button is held.
int16_t TrackControl(ControlRef control, Point point, ControlActionUPP action);

int16_t GetControlValue(ControlRef control);
// Kept within the control's limits.
void SetControlValue(ControlRef control, int16_t value);
void GetControlTitle(ControlRef control, StringPtr title);
void SetControlTitle(ControlRef control, ConstStringPtr title);

}  // extern "C"

#pragma GCC visibility pop
