// Settings to and from the host's scripting system: playback of a recorded action, and recording.
#pragma once

#include "photoshop/filter_record.h"
#include "platform/types.h"
#include "settings/setting_registry.h"

// Overwrites the input settings that the host's descriptor holds with values inside their ranges; anything
// else is silently left. Returns 1 when the dialog must not be shown, 0 when it is to be shown.
Boolean _ReadScriptParamFromPS(FilterRecord *record, SPBlock *block);

// Records every setting into a new descriptor for the host. Returns 0, also when there is nothing to write or
// the host has no suites, or what closing the writer gave.
OSErr _WriteScriptParamToPS(FilterRecord *record, SPBlock *block);
