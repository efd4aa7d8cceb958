// The scripting side of a host: supplies one list of recorded values and collects another. A value is
// delivered only by the getter of its own type.
#pragma once

#include <string>
#include <vector>

#include "photoshop/descriptors.h"
#include "photoshop/suites.h"

namespace script {

struct Item {
    OSType key = 0;
    OSType type = 0;  // typeFloat, typeInteger, typeBoolean, typeText or typeEnumerated
    double number = 0;
    std::string text = {};
    OSType enumeration = 0;
    OSErr error = noErr;  // the result of reading it

    bool operator==(const Item &) const = default;
};

extern std::vector<Item> recorded;     // what was written
extern std::vector<OSType> askedKeys;  // the keys that the reader was opened with, without the closing 0
extern int openTokens;                 // readers and writers not yet closed
extern OSErr closeError;               // the result of closing a writer
extern ReadDescriptorProcs readProcs;
extern WriteDescriptorProcs writeProcs;
extern HandleProcs handleProcs;  // for handles of the Memory Manager

// Plays `items`; a host without a recorded action has no descriptor. The caller disposes of `descriptor`.
PIDescriptorParameters Parameters(std::vector<Item> items, int16_t playInfo);

}  // namespace script
