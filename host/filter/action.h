// An action: the parameters of a recorded filter run, and their private encoding for other processes and for
// Handles.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "hybridmedian/public.h"
#include "photoshop/descriptors.h"
#include "platform/types.h"

// The type decides which members hold the value; the others stay zero.
struct ActionItem {
    OSType key = 0;
    OSType type = 0;         // one from photoshop/descriptors.h, except an object reference
    OSType code = 0;         // a unit, a class, or the type of an enumeration or object
    uint32_t integer = 0;    // the bits of an integer, a Boolean, or an enumeration's value
    double number = 0;       // a float, with or without a unit
    std::string bytes = {};  // a text, an alias, or an object's own encoding
};

struct Action {
    OSType event = kHybridMedianEvent;
    std::vector<ActionItem> items;  // in playing order
};

const ActionItem *FindItem(const Action &action, OSType key);

// To and from bytes for another process of this program. Unpacking bytes that PackAction did not make returns
// false and leaves an empty action.
std::string PackAction(const Action &action);
bool UnpackAction(std::string_view packed, Action *action);

// The caller disposes of the handle; null when memory is short.
Handle EncodeAction(const Action &action);
// Returns false and leaves an empty action for null, and for a handle that EncodeAction did not make.
bool DecodeAction(Handle handle, Action *action);
