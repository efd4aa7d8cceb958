// The preferences file that all filters of the family share: a header, 48 texts and a tail, 53,248 bytes in
// all, in the Preferences folder. It is read before the filter runs and rewritten whole afterwards.
//
// Failures are not reported: what cannot be read leaves the context unchanged, and what cannot be written is
// lost.
#pragma once

#include "toolkit/run_context.h"

// Another process has the file locked. Contents that were not read must not be overwritten, so the file is
// then left alone.
constexpr int16_t kPreferencesLocked = -1;

// Returns the open file for WritePreferences, 0 if there is none, or kPreferencesLocked.
int16_t ReadPreferences(RunContext *context);

// Closes the file and disposes of the context's preference strings.
void WritePreferences(RunContext *context, int16_t refNum);
