// Between POSIX paths, as people and hosts on POSIX give them, and FSSpecs.
#pragma once

#include <string>

#include "platform/types.h"

// fnfErr when nothing has the path's last name; the FSSpec is sound all the same.
OSErr SpecFromPosixPath(const std::string &path, FSSpec *spec);
OSErr PosixPathFromSpec(const FSSpec &spec, std::string *path);
