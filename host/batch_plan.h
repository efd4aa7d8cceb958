// All pictures of a command line, and where each one goes.
#pragma once

#include <vector>

#include "host/options.h"
#include "host/work/file_task.h"

// Looks for pictures in folders, reads standard input, and decides where each output goes. Refuses a missing
// folder, and two inputs with the same output.
MaybeFailure PlanBatch(const Options &options, std::vector<FileRequest> *requests);
