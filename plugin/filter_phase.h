// The middle of a run, when the whole image is in the image store: takes the settings from the defaults and
// the host's action, runs the filter, and records the settings for the host.
#pragma once

#include "plugin/plugin_state.h"
#include "plugin/run_geometry.h"

OSErr RunFilterPhase(PluginState *state, const RunGeometry &run);
