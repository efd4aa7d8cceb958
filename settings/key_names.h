// Names and units of settings, from the key-name table in the plug-in's resources.
//
// 'TEXT' 9999 is an array of 64-byte records, the first of them a heading: key (4 characters), a separator,
// the name from byte 5, the units code from byte 48. '_' ends a text.
#pragma once

#include "platform/types.h"

constexpr int32_t kKeyNameSize = 64;  // bytes of a name or of units, with the final zero
constexpr int32_t kUnitIndexInches = 6;

// Fills in name and units, each a text of kKeyNameSize bytes, or null if not wanted. `unitIndex` selects the
// length unit of settings that have one, from pixels (0) to nanometres (10); any other value means inches.
// Returns fnfErr when the table or the key is missing, or when the table leaves the setting out of logs.
OSErr _LookupParamKeyName(OSType key, char *outName, char *outUnits, int32_t unitIndex);
