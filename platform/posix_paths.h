// Between POSIX paths, as people and hosts on POSIX give them, and FSSpecs.
#pragma once

#include <string>

#include "platform/types.h"

#pragma GCC visibility push(default)

// fnfErr when nothing has the path's last name; the FSSpec is sound all the same.
OSErr SpecFromPosixPath(const std::string &path, FSSpec *spec);
OSErr PosixPathFromSpec(const FSSpec &spec, std::string *path);

// The folder that FindFolder finds as the Preferences folder: $HYMEDIAN_PREFERENCES, else
// hymedian/Preferences below $XDG_CONFIG_HOME or ~/.config.
std::string PreferencesPath();
// Makes it, open to its owner alone. Without one the filter still runs, from its defaults and in memory, so
// that a failure is nobody's business.
void MakePreferencesFolder();

#pragma GCC visibility pop
