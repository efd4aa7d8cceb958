// The middle of a run, with the whole image in the image store: settings from the defaults and the host's
// script, the filter, and the settings back to the script.
#pragma once

#include "plugin/plugin_state.h"
#include "plugin/run_geometry.h"

OSErr RunFilterPhase(PluginState *state, const RunGeometry &run);
