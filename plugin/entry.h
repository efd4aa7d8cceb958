// The plug-in's entry point: the host's selectors, applied to the state kept between calls.
#pragma once

#include "photoshop/filter_record.h"
#include "plugin/plugin_state.h"

// What the module exports as "main". `*data` is 0 before the first call and belongs to the plug-in after
// that.
void PluginMain(int16_t selector, FilterRecord *record, intptr_t *data, int16_t *result);

// One routine per selector. They return the selector's result.
void InitGlobals(PluginState *state);
OSErr DoParameters(PluginState *state);
OSErr DoPrepare(PluginState *state);
// Asks for the first row. If the host has advanceState, the whole run happens in here.
OSErr DoStart(PluginState *state);
OSErr DoFinish(PluginState *state);

// userCanceledErr when the host has no advanceState.
OSErr PhotoshopAdvanceState(PluginState *state);
