// How failures are passed on: the exit status, and the one sentence that the user is told.
#pragma once

#include <optional>
#include <string>

constexpr int kExitDone = 0;
constexpr int kExitFailed = 1;
constexpr int kExitUsage = 2;
constexpr int kExitInterrupted = 130;  // what shells report for a program ended by Ctrl-C

struct Failure {
    int status;
    std::string sentence;  // without the program's name; empty if the user has already been told
};

using MaybeFailure = std::optional<Failure>;

// "photo.png: no such file."
inline Failure FileFailure(const std::string &file, const std::string &reason) {
    return {kExitFailed, file + ": " + reason + "."};
}

inline Failure Interruption(const std::string &file) {
    return {kExitInterrupted, file + ": interrupted, nothing was written."};
}

// The failure of a file that users know by another name than that of the first argument.
Failure Renamed(Failure failure, const std::string &file, const std::string &name);

// Tells the user, in one line on standard error. Returns the failure's status.
int Tell(Failure failure);
