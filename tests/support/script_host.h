// The scripting side of a host: hands out one list of recorded values and takes another. A value is delivered
// by the getter of its type alone.
#pragma once

#include <string>
#include <vector>

#include "photoshop/descriptors.h"

namespace script {

struct Item {
    OSType key = 0;
    OSType type = 0;  // typeFloat, typeInteger, typeBoolean, typeText or typeEnumerated
    double number = 0;
    std::string text = {};
    OSType enumeration = 0;
    OSErr error = noErr;  // what reading it gives

    bool operator==(const Item &) const = default;
};

extern std::vector<Item> recorded;     // what was written
extern std::vector<OSType> askedKeys;  // those that the reader was opened with, the closing 0 aside
extern int openTokens;                 // readers and writers that are not closed
extern OSErr closeError;               // what closing a writer gives
extern ReadDescriptorProcs readProcs;
extern WriteDescriptorProcs writeProcs;

// Plays `items`; a host without a recorded action has no descriptor. The caller disposes of `descriptor`.
PIDescriptorParameters Parameters(std::vector<Item> items, int16_t playInfo);

}  // namespace script
