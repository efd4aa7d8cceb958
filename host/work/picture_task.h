// The work on one picture, from its opened file to its written one.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/filter/orders.h"
#include "host/filter/plugin_info.h"
#include "host/picture/picture.h"
#include "host/picture/picture_format.h"
#include "host/picture/selection.h"
#include "host/report/failure.h"
#include "host/report/watcher.h"
#include "host/work/output_file.h"
#include "host/work/picture_stream.h"

// Pages count from 1.
struct PageRange {
    int32_t first, last;
};

struct FilterSettings {
    FilterOrders orders;
    Selection selection;
    SaveOptions save;
    std::optional<SampleRange> range;      // of floats
    std::optional<int32_t> maxMegapixels;  // without one, as below
    int32_t passes = 1;
    int32_t amount = 100;               // percent of the result, of which the input is the rest
    std::optional<PageRange> pages;     // of a stack; without one, all
    std::optional<int32_t> lastRadius;  // before the first of all pictures
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
    std::string kind;       // "40 x 30 RGB, 8 bits"
    size_t pages = 1;       // filtered ones of a stack
    bool alike = true;      // all of them are of the first one's kind
    int32_t radius = 0;     // 0 where nothing was filtered
    std::string mode = {};  // the first page's, as the next three
    int32_t width = 0, height = 0, depth = 0;
    std::string further = {};       // what else was done: ", 2 passes"
    std::string format;             // the output's
    std::vector<std::string> lost;  // what it could not hold
};

// What the picture is, and what was done to it.
std::string WordsOn(const FileReport &report);

// Refuses what can be refused without reading a pixel.
MaybeFailure CheckPicture(const FileTask &task, const PluginInfo &plugin, const Picture &picture);

// Reads, filters and writes a task's opened picture. `leave` as for streams.
MaybeFailure DoPicture(const FileTask &task, const FilterPlace &place, const Watcher &watcher,
                       const std::function<void(const Failure &)> &leave, Picture *picture,
                       FileReport *report);
