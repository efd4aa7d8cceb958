// The command line.
#pragma once

#include <optional>
#include <string>

#include "host/failure.h"

struct Options {
    std::string inputFile;
    std::string outputFile;  // the input's, with --in-place alone
    std::optional<double> radius;
    std::string pluginFolder;
    bool inPlace = false;
    bool force = false;
    bool quiet = false;
    // What --help or --version is answered with; nothing else is to be done then.
    std::string answer;
};

MaybeFailure ParseOptions(int count, char **arguments, Options *options);
