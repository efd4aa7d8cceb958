// All pictures of a command line: where each one goes, and the work on them.
#pragma once

#include <vector>

#include "host/filter/plugin.h"
#include "host/options.h"
#include "host/work/file_task.h"

// Decides where each output goes. Refuses a missing folder, and two inputs with the same output.
MaybeFailure PlanBatch(const Options &options, std::vector<FileRequest> *requests);

// Does the work and reports on it; a failure only ends its own picture. Returns the exit status.
int RunBatch(const Options &options, const FilterSettings &settings, const std::vector<FileRequest> &requests,
             Plugin *plugin);
