// The work on a TIFF of several pages, each of which is filtered as a picture of its own.
#pragma once

#include <functional>

#include "host/picture/page_stack.h"
#include "host/work/picture_task.h"
#include "host/work/scratch_file.h"

// Opens the first page to be filtered, which then lies in `file`, and refuses everything that can be refused
// without reading a pixel.
MaybeFailure CheckStack(const FileTask &task, const PluginInfo &plugin, const PageStack &stack,
                        ScratchFile *file, Picture *picture);

// Filters the task's pages and writes all of them, one after the other; into a format without pages, the one
// page alone. `leave` as for streams.
MaybeFailure DoStack(const FileTask &task, const FilterPlace &place, const Watcher &watcher,
                     const std::function<void(const Failure &)> &leave, const PageStack &stack,
                     FileReport *report);
