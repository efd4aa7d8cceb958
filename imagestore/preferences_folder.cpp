#include "imagestore/preferences_folder.h"

#include "platform/files.h"

Folder PreferencesFolder() {
    Folder folder;
    FindFolder(kOnSystemDisk, kPreferencesFolderType, false, &folder.vRefNum, &folder.dirID);
    return folder;
}
