// A filter of a test's own on the run driver: what its hooks do and answer is the test's to say.
#pragma once

#include <functional>

#include "settings/setting_registry.h"
#include "toolkit/filter_hooks.h"
#include "toolkit/run_context.h"

struct TestFilter {
    std::function<void(RunContext *context, SPBlock *settings)> declareSettings;
    // Called when the context is complete and the script has been read.
    std::function<void(NamedImage *image, const RunContext *context, SPBlock *settings)> makeParameters;
    OSErr processResult = noErr;
    int processedBits = 0;  // of the samples that the last run had filtered
};

extern TestFilter testFilter;
