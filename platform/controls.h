// The Control Manager. Closing a window disposes of its controls too; calls on a control that no longer
// exists do nothing.
#pragma once

#include "platform/windows.h"

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

ControlRef NewControl(WindowRef window, const Rect *bounds, ConstStringPtr title, Boolean visible,
                      int16_t value, int16_t minimum, int16_t maximum, int16_t definition,
                      intptr_t reference);
void DisposeControl(ControlRef control);

// The part in which the mouse was pressed at `point`, in local coordinates, and released; 0 for none. Only
// the thumb changes the control's value. Without an action procedure nothing happens while the button is
// held.
int16_t TrackControl(ControlRef control, Point point, ControlActionUPP action);

int16_t GetControlValue(ControlRef control);
// Clamped to the control's limits.
void SetControlValue(ControlRef control, int16_t value);
void GetControlTitle(ControlRef control, StringPtr title);
void SetControlTitle(ControlRef control, ConstStringPtr title);
