// A file for work in progress, without a name: it is gone with the process, however that ends.
#pragma once

#include <string>

#include "host/report/failure.h"

struct ScratchFile {
    int descriptor = -1;
    std::string path;  // for this process and its workers

    ScratchFile() = default;
    ScratchFile(const ScratchFile &) = delete;
    ScratchFile &operator=(const ScratchFile &) = delete;
    ~ScratchFile();
};

// Makes an empty file on the folder's disk; false, with errno, if that cannot be.
bool MakeScratch(const std::string &folder, ScratchFile *file);

// Makes one beside the output or, if that cannot be, in the temporary folder. Messages name the input.
MaybeFailure OpenScratch(const std::string &output, const std::string &input, ScratchFile *file);

// Copies one descriptor's bytes, to their end, to the other; false, with errno, if that fails.
bool CopyBytes(int from, int to);

// Where temporary files go by the user's wish: TMPDIR, or /tmp.
std::string TemporaryFolder();

// The folder of a file.
std::string FolderOfFile(const std::string &file);
