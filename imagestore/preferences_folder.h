// Where backing files and preferences lie.
#pragma once

#include "platform/types.h"

struct Folder {
    int16_t vRefNum;
    int32_t dirID;
};

// The Preferences folder of the system disk. One that is missing makes every call on it fail, which is all
// that callers need to know.
Folder PreferencesFolder();
