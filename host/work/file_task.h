// The work on one file, from its name to its result: a picture, or a stack of pages.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "host/work/picture_task.h"
#include "host/work/scratch_file.h"

struct FileRequest {
    std::string inputFile;
    std::string inputName;  // as messages call it
    OutputNames outputs;
    bool force;
    bool inPlace;
    bool makesFolders;                     // those of its outputs, if they are missing
    bool toStandardOutput;                 // the picture itself
    bool keepsName;                        // the output is called as the input, but for a suffix or a folder
    std::shared_ptr<ScratchFile> spooled;  // where standard input went; null for files
};

struct PlannedFile {
    FileTask task;
    std::array<OutputFile, kOutputCount> outputs;
    ScratchFile piped;  // on its way to standard output
};

// Opens the picture, of a stack the first page to be filtered, and refuses everything that can be refused
// without reading a pixel or writing anything.
MaybeFailure CheckFile(const FileRequest &request, const FilterSettings &settings, const PluginInfo &plugin,
                       PlannedFile *planned, Picture *picture);

// The same, and makes folders and temporary files.
MaybeFailure PlanFile(const FileRequest &request, const FilterSettings &settings, const PluginInfo &plugin,
                      PlannedFile *planned, Picture *picture);

// Reads, filters and writes a task's file. `leave` as for streams.
MaybeFailure DoFileTask(const FileTask &task, const FilterPlace &place, const Watcher &watcher,
                        const std::function<void(const Failure &)> &leave, FileReport *report);

// Moves the finished files to their places, or copies one to standard output.
MaybeFailure PublishFile(PlannedFile *planned);
