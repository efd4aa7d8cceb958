// Names and units of settings, from the key-name table in the plug-in's resources.
//
// 'TEXT' 9999 is a row of 64-byte records, the first a heading: key (4 characters), a separator, the name
// from byte 5, the units code from byte 48. '_' ends a text.
#pragma once

#include "platform/types.h"

constexpr int32_t kKeyNameSize = 64;
constexpr int32_t kUnitIndexInches = 6;

// Fills name and units, each a text of kKeyNameSize bytes, or null where not wanted. `unitIndex` chooses the
// length unit of settings that have one, from pixels (0) to nanometres (10); any other counts as inches.
// fnfErr when table or key is missing, or when the table says that the setting is left out of logs.
OSErr _LookupParamKeyName(OSType key, char *outName, char *outUnits, int32_t unitIndex);
