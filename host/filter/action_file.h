// Recorded actions as files: JSON that people can read and write.
//
//     {"event": "HyMd", "parameters": {"nRad": {"type": "float", "value": 3.0}}}
//
// Types: float, "unit float" with "unit", integer, boolean, text, enumerated with "of", which names its
// enumeration. Events, keys, units and the values of enumerations are codes of four characters.
#pragma once

#include <string>

#include "host/filter/action.h"
#include "host/report/failure.h"

// Refuses what is not such a file, another event, and parameters that the filter would pass over in silence.
MaybeFailure ReadAction(const std::string &file, Action *action);

// Writes to `path`; messages speak of `file`. Refuses what ReadAction would.
MaybeFailure WriteAction(const Action &action, const std::string &path, const std::string &file);
