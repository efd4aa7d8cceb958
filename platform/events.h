// The Event Manager's records.
#pragma once

#include "platform/types.h"

struct EventRecord {
    uint16_t what;
    uintptr_t message;  // the character of a key event; the window of an update or activate event
    uint32_t when;
    Point where;  // the mouse, in screen coordinates
    uint16_t modifiers;
};

enum : uint16_t {
    nullEvent = 0,
    mouseDown = 1,
    keyDown = 3,
    updateEvt = 6,
    activateEvt = 8,
};

constexpr uint16_t cmdKey = 0x0100;
constexpr uintptr_t charCodeMask = 0xFF;

enum : uint8_t {
    kEnterCharCode = 3,
    kBackspaceCharCode = 8,
    kReturnCharCode = 13,
    kEscapeCharCode = 27,
};

// The mouse position at the latest event, in the current port's coordinates.
void GetMouse(Point *mouse);
