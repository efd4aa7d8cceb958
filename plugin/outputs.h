// What a filter measured, taken from its output settings: a line of tab-separated fields in the measurement
// file, and entries in the run log. A filter without outputs writes neither.
#pragma once

#include "settings/setting_registry.h"
#include "toolkit/run_context.h"

// The preference string that names the measurement file.
constexpr int32_t kMeasurementPathSlot = 2;

// Failures of the file are not reported.
void WriteMeasurements(const RunContext *context, SPBlock *settings);
// Also closes the log if it is open.
void LogMeasurements(const RunContext *context, SPBlock *settings);
