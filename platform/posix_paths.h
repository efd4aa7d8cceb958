// Between POSIX paths, as people and hosts on POSIX give them, and file specifications.
#pragma once

#include <string>

#include "platform/types.h"

// fnfErr when nothing has the path's last name; the specification is sound all the same.
OSErr SpecFromPosixPath(const std::string &path, FSSpec *spec);
OSErr PosixPathFromSpec(const FSSpec &spec, std::string *path);
