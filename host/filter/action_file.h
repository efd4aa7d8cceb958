// Recorded actions as files, in JSON that people can read and write.
//
//     {"event": "HyMd", "parameters": {"nRad": {"type": "float", "value": 3.0}}}
//
// Types: float, "unit float" with a "unit", integer, boolean, text, and enumerated with "of", which names the
// enumeration. Events, keys, units and enumeration values are four-character codes.
#pragma once

#include <string>

#include "host/filter/action.h"
#include "host/report/failure.h"

// Refuses files of any other form, other events, and parameters that the filter would silently ignore.
MaybeFailure ReadAction(const std::string &file, Action *action);

// Writes to `path`; messages name `file`. Refuses what ReadAction would refuse.
MaybeFailure WriteAction(const Action &action, const std::string &path, const std::string &file);
