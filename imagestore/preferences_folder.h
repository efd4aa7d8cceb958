// The folder that holds backing files and preferences.
#pragma once

#include "platform/types.h"

struct Folder {
    int16_t vRefNum;
    int32_t dirID;
};

// The Preferences folder of the system disk. If it is missing, every call on it fails, which is all that
// callers need to know.
Folder PreferencesFolder();
// Makes it, for its owner alone, if it is missing: for those about to write there.
Folder WritablePreferencesFolder();
