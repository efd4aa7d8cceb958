// Converts between FSSpecs and the system's paths, as users and hosts give them. On Windows they are in
// UTF-8, too.
#pragma once

#include <string>

#include "platform/types.h"

// fnfErr when nothing has the path's last name; the FSSpec is valid all the same.
OSErr SpecFromNativePath(const std::string &path, FSSpec *spec);
OSErr NativePathFromSpec(const FSSpec &spec, std::string *path);

// The folder that FindFolder returns as the Preferences folder: $HYMEDIAN_PREFERENCES, else
// hymedian/Preferences below $XDG_CONFIG_HOME or ~/.config; on Windows, below %APPDATA%. Empty if there is
// nothing that says where.
std::string PreferencesPath();
// Creates it, accessible only to its owner. Failures are not reported: without the folder the filter still
// runs, with default settings and images in memory.
void MakePreferencesFolder();

// The folder of the file that this code is part of, a module or a program, with symbolic links resolved;
// empty if it cannot be told.
std::string OwnFolder();
