// What parent and worker say to each other: jobs and answers, as bytes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/filter/filter_run.h"
#include "host/report/failure.h"
#include "host/work/band_plan.h"
#include "host/work/file_task.h"

// Where a band lies in the blocks that are shared with the worker.
struct BandPlace {
    int64_t storeBytes;  // of each of the store's two blocks
    int32_t storeRow;    // where the band's frame begins
    int64_t maskBytes;   // of the whole picture's; 0 without a mask
    Band rows;
};

struct BandJob {
    DocumentShape picture;
    BandPlace place;
    FilterOrders orders;
};

struct WorkerJob {
    std::string pluginFolder;
    std::optional<BandJob> band;  // otherwise a file
    FileTask file;
};

struct FileAnswer {
    MaybeFailure failure;
    FileReport report;
};

std::string PackBandJob(const std::string &pluginFolder, const DocumentShape &picture, const BandPlace &place,
                        const FilterOrders &orders);
std::string PackFileJob(const std::string &pluginFolder, const FileTask &task);
bool UnpackJob(std::string_view packed, WorkerJob *job);

std::string PackOutcome(const FilterOutcome &outcome);
bool UnpackOutcome(std::string_view packed, FilterOutcome *outcome);
std::string PackAnswer(const FileAnswer &answer);
bool UnpackAnswer(std::string_view packed, FileAnswer *answer);
