// The work on one picture file, from its name to its result.
#pragma once

#include <functional>
#include <string>

#include "host/filter/orders.h"
#include "host/filter/plugin_info.h"
#include "host/picture/picture.h"
#include "host/picture/picture_format.h"
#include "host/picture/selection.h"
#include "host/report/failure.h"
#include "host/report/watcher.h"
#include "host/work/output_file.h"
#include "host/work/picture_stream.h"

struct FilterSettings {
    FilterOrders orders;
    Selection selection;
    SaveOptions save;
    std::optional<SampleRange> range;  // of floats
};

struct FileRequest {
    std::string inputFile;
    OutputNames outputs;
    bool force;
    bool inPlace;
    std::optional<int32_t> maxMegapixels;  // without one, as below
};

// A streamed picture's size takes no memory; some pictures have to be held whole. Chosen: 6 GB for both
// blocks of 8-bit RGB.
constexpr int32_t kMaxStreamedMegapixels = 100'000;
constexpr int32_t kMaxWholeMegapixels = 1000;

// The task writes to `written`, and its planner moves those files to `outputs`: the process that does the
// task may die in between.
struct FileTask {
    std::string inputFile;
    OutputNames outputs;
    OutputNames written;
    FilterSettings settings;
};

// What the user is told about a finished task.
struct FileReport {
    std::string words;  // what the picture is, and what was done to it
    std::string lost;   // what the output's format could not hold; empty for nothing
};

struct PlannedFile {
    FileTask task;
    std::array<OutputFile, kOutputCount> outputs;
};

// Opens the picture, and refuses everything that can be refused without reading a pixel.
MaybeFailure PlanFile(const FileRequest &request, const FilterSettings &settings, const PluginInfo &plugin,
                      PlannedFile *planned, Picture *picture);

// Reads, filters and writes a task's opened picture. `leave` as for streams.
MaybeFailure DoFileTask(const FileTask &task, const FilterPlace &place, const Watcher &watcher,
                        const std::function<void(const Failure &)> &leave, Picture *picture,
                        FileReport *report);

// Moves the finished files to their places.
MaybeFailure PublishFile(PlannedFile *planned);
