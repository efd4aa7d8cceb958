// The plug-in's entry: the host's selectors, on the state kept between them.
#pragma once

#include "photoshop/filter_record.h"
#include "plugin/plugin_state.h"

// What the module exports as "main". `*data` is 0 before the first call and belongs to the plug-in from then
// on.
void PluginMain(int16_t selector, FilterRecord *record, intptr_t *data, int16_t *result);

// The selectors, each on the state. They return the selector's result.
void InitGlobals(PluginState *state);
OSErr DoParameters(PluginState *state);
OSErr DoPrepare(PluginState *state);
// Asks for the first row. Where the host has advanceState the whole run happens in here.
OSErr DoStart(PluginState *state);
OSErr DoFinish(PluginState *state);

// userCanceledErr when the host has no advanceState.
OSErr PhotoshopAdvanceState(PluginState *state);
