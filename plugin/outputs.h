// What a filter measured, from its output settings: a line of tab-separated fields in the measurement file,
// and entries in the run log. Nothing for a filter that declares no outputs.
#pragma once

#include "settings/setting_registry.h"
#include "toolkit/run_context.h"

// The measurement file is named by this preference string.
constexpr int32_t kMeasurementPathSlot = 2;

// Failures of the file are not reported.
void WriteMeasurements(const RunContext *context, SPBlock *settings);
// Closes the log when it is open.
void LogMeasurements(const RunContext *context, SPBlock *settings);
