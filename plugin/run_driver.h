// The run, one step per call: from the host's rows into images, through the filter, and back.
#pragma once

#include "plugin/plugin_state.h"

// Does what the phase calls for and sets up the next request. Returns the state's result.
OSErr DoContinue(PluginState *state);

// Requests nothing more.
void ClearRequest(FilterRecord *record);
// Request row `row` of the filter rectangle; left and right stay as they are.
void RequestRow(FilterRecord *record, int32_t row);
void RequestMaskRow(FilterRecord *record, int32_t row);
