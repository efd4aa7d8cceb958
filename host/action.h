// An action: the parameters of a recorded filter run, and their private encoding, for other processes and
// behind a Handle.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "photoshop/descriptors.h"
#include "platform/types.h"
#include "plugin/radius_setting.h"

constexpr OSType kHybridMedianEvent = FourCharCode("HyMd");

// Which members hold the value goes by the type; the others stay zero.
struct ActionItem {
    OSType key = 0;
    OSType type = 0;         // one of photoshop/descriptors.h, but no object reference
    OSType code = 0;         // the unit, the class, an enumeration's or an object's type
    uint32_t integer = 0;    // the bits of an integer, a Boolean, or an enumeration's value
    double number = 0;       // of a float, with or without unit
    std::string bytes = {};  // a text, an alias, or an object's own encoding
};

struct Action {
    OSType event = kHybridMedianEvent;
    std::vector<ActionItem> items;  // in the order in which they are played
};

const ActionItem *FindItem(const Action &action, OSType key);

// As bytes for another process of this program. Unpacking gives false, and an empty action, for bytes that
// PackAction did not make.
std::string PackAction(const Action &action);
bool UnpackAction(std::string_view packed, Action *action);

// The caller disposes of the handle; null when memory is short.
Handle EncodeAction(const Action &action);
// False, and an empty action, for a null handle and for one that EncodeAction did not make.
bool DecodeAction(Handle handle, Action *action);
