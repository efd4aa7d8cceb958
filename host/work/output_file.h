// The output file, which appears whole or not at all: it is written under another name in the same folder and
// moved into place when complete.
#pragma once

#include <sys/types.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string>

#include "host/report/failure.h"

// What the work on a picture leaves behind: the picture itself and, if wanted, before and after side by side,
// and the action that the filter recorded.
enum Output : size_t { kPictureOutput, kComparisonOutput, kActionOutput, kOutputCount };

using OutputNames = std::array<std::string, kOutputCount>;  // empty for those not wanted

struct OutputRequest {
    std::string inputFile;
    std::string outputFile;
    bool force;    // existing files may be replaced; also inputs that are write-protected or another user's
    bool inPlace;  // the input may be replaced
};

struct FileOwner {
    uid_t user;
    gid_t group;
};

struct OutputFile {
    std::string name;    // as the user gave it
    std::string target;  // where it goes, with symbolic links resolved
    bool replace = false;
    bool force = false;
    mode_t permissions = 0;          // those of the input
    std::optional<FileOwner> owner;  // set when the input is replaced: it keeps its owner
    int descriptor = -1;             // of the temporary file
    std::string temporary;           // empty when there is none

    OutputFile() = default;
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;
    // Removes a temporary file that was not moved into place.
    ~OutputFile();
};

// Decides where the output goes; refuses places where it cannot or must not go.
MaybeFailure PlanOutput(const OutputRequest &request, OutputFile *output);
// Makes the empty temporary file, which only its owner may read.
MaybeFailure CreateTemporary(OutputFile *output);
// Does nothing for one that was moved into place.
void RemoveTemporary(OutputFile *output);
// Gives the finished temporary file the input's permissions, and also its owner if it replaces the input;
// then moves it into place.
MaybeFailure Publish(OutputFile *output);
