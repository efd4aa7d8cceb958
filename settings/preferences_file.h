// The preferences file that all filters of the family share: a header, 48 texts and a tail, 53,248 bytes in
// all, in the Preferences folder. It is read before the filter runs and written back whole afterwards.
//
// No failure is reported: what cannot be read stays as it is in the context, what cannot be written is lost.
#pragma once

#include "toolkit/run_context.h"

// Another process keeps the file. What was not read must not be written over, so that it is then left alone.
constexpr int16_t kPreferencesLocked = -1;

// Returns the open file for WritePreferences, 0 when there is none, or kPreferencesLocked.
int16_t ReadPreferences(RunContext *context);

// Closes the file, and disposes of the context's preference strings.
void WritePreferences(RunContext *context, int16_t refNum);
