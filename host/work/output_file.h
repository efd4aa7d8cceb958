// The output file, which appears whole or not at all: it is written under another name beside its place and
// moved there when complete.
#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "host/report/failure.h"

// What the work on a picture leaves: the picture itself and, where they are wanted, before and after side by
// side, and the action that the filter recorded.
enum Output : size_t { kPictureOutput, kComparisonOutput, kActionOutput, kOutputCount };

using OutputNames = std::array<std::string, kOutputCount>;  // empty where one is not wanted

struct OutputRequest {
    std::string inputFile;
    std::string outputFile;
    bool force;    // an existing file may be replaced, a write-protected input, and one of another owner
    bool inPlace;  // the input may be replaced
};

struct FileOwner {
    uid_t user;
    gid_t group;
};

struct OutputFile {
    std::string name;    // as the user gave it
    std::string target;  // where it goes: behind symbolic links
    bool replace = false;
    bool force = false;
    mode_t permissions = 0;          // the input's
    std::optional<FileOwner> owner;  // of an input that is replaced, whose it stays
    int descriptor = -1;             // of the temporary file
    std::string temporary;           // empty when there is none

    OutputFile() = default;
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;
    // Removes a temporary file that was not moved to its place.
    ~OutputFile();
};

// Decides where the output goes; refuses a place where it cannot or must not go.
MaybeFailure PlanOutput(const OutputRequest &request, OutputFile *output);
// Makes the temporary file, empty, which only its owner may read.
MaybeFailure CreateTemporary(OutputFile *output);
// Gives the written temporary file the input's permissions, and its owner where it takes the input's place,
// and moves it there.
MaybeFailure Publish(OutputFile *output);
