#include "imagestore/preferences_folder.h"

#include "platform/files.h"
#include "platform/native_paths.h"

Folder PreferencesFolder() {
    Folder folder;
    FindFolder(kOnSystemDisk, kPreferencesFolderType, false, &folder.vRefNum, &folder.dirID);
    return folder;
}

Folder WritablePreferencesFolder() {
    MakePreferencesFolder();
    return PreferencesFolder();
}
