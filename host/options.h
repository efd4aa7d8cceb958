// The command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/document/document.h"
#include "host/picture/storage.h"
#include "host/report/failure.h"
#include "host/work/picture_task.h"
#include "photoshop/document_info.h"

// Stands for standard input or output.
constexpr char kPipe[] = "-";

struct Options {
    std::vector<std::string> inputFiles;
    std::string output;  // a file, a folder or kPipe; empty for --in-place and for a suffix alone
    std::string suffix;  // put behind the names of outputs; empty for none
    bool recursive = false;
    int32_t format = kFormatOfName;
    std::optional<int32_t> radius;
    std::string playFile;  // empty for none, like the next three
    std::string recordFile;
    std::string maskFile;
    std::string comparisonFile;
    std::optional<VRect> selection;
    std::optional<SampleRange> range;
    std::string pluginFolder;
    int32_t jobs = 1;
    std::optional<int32_t> maxMegapixels;
    std::optional<PageRange> pages;
    int32_t passes = 1;
    int32_t amount = 100;
    std::optional<int32_t> compressionLevel;
    bool dialog = false;
    bool dialogForEach = false;  // otherwise one answer is for all pictures
    bool inPlace = false;
    bool force = false;
    StorageChoice storage;
    bool stamp = false;
    bool quiet = false;
    bool json = false;
    bool dryRun = false;
    bool info = false;
    // The answer to --help or --version; nothing else is done then.
    std::string answer;
};

MaybeFailure ParseOptions(int count, char **arguments, Options *options);
