// A test's own filter on the run driver: the test decides what its hooks do and return.
#pragma once

#include <functional>

#include "settings/setting_registry.h"
#include "toolkit/filter_hooks.h"
#include "toolkit/run_context.h"

struct TestFilter {
    std::function<void(RunContext *context, SPBlock *settings)> declareSettings;
    // Called once the context is complete and the script has been read.
    std::function<void(NamedImage *image, const RunContext *context, SPBlock *settings)> makeParameters;
    OSErr processResult = noErr;
    int processedBits = 0;  // bits per sample in the last filtered run
};

extern TestFilter testFilter;
