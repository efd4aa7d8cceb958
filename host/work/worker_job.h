// What parent and worker say to each other: jobs and answers, as bytes.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/filter/filter_run.h"
#include "host/filter/tiles.h"
#include "host/report/failure.h"
#include "host/work/file_task.h"

// A tile of a document whose blocks are shared with the worker.
struct TileJob {
    Document document;  // without its blocks
    bool masked = false;
    Tile tile = {};
    FilterOrders orders;
};

struct WorkerJob {
    std::string pluginFolder;
    std::optional<TileJob> tile;  // otherwise a file
    FileTask file;
};

struct FileAnswer {
    MaybeFailure failure;
    FileReport report;
};

std::string PackTileJob(const std::string &pluginFolder, const Document &document, const FilterOrders &orders,
                        const Tile &tile);
std::string PackFileJob(const std::string &pluginFolder, const FileTask &task);
bool UnpackJob(std::string_view packed, WorkerJob *job);

std::string PackOutcome(const FilterOutcome &outcome);
bool UnpackOutcome(std::string_view packed, FilterOutcome *outcome);
std::string PackAnswer(const FileAnswer &answer);
bool UnpackAnswer(std::string_view packed, FileAnswer *answer);
