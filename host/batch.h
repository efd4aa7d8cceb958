// The work on all pictures of a command line.
#pragma once

#include <vector>

#include "host/filter/plugin.h"
#include "host/options.h"
#include "host/work/file_task.h"

// Only says what would be done, and what would fail before a pixel is read. Returns the exit status.
int RehearseBatch(const Options &options, const FilterSettings &settings,
                  const std::vector<FileRequest> &requests, const Plugin &plugin);

// Does the work and reports on it; a failure only ends its own picture. Returns the exit status.
int RunBatch(const Options &options, const FilterSettings &settings, const std::vector<FileRequest> &requests,
             Plugin *plugin);
