// Settings to and from the host's scripting system: playback of a recorded action, and recording.
#pragma once

#include "photoshop/filter_record.h"
#include "platform/types.h"
#include "settings/setting_registry.h"

// Overwrites those input settings for which the host's descriptor has a value within range; silently leaves
// the others alone. Returns 1 when the dialog must not be shown, 0 when it must.
Boolean _ReadScriptParamFromPS(FilterRecord *record, SPBlock *block);

// Records every setting in a new descriptor for the host. Returns the result of closing the writer, or 0 when
// there is nothing to write or the host has no suites.
OSErr _WriteScriptParamToPS(FilterRecord *record, SPBlock *block);
