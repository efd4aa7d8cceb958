// A result that is mixed with the picture that it was made from.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "host/picture/picture.h"
#include "host/picture/picture_writer.h"
#include "host/report/failure.h"

// Reads the original once more, strip by strip, on a thread of its own.
struct Mixture {
    int32_t percent = 100;  // of the result
    Picture original;
    Document strip;              // rows of the original
    std::vector<uint8_t> mixed;  // one row
    MaybeFailure failure;        // why the rows ended early

    std::thread reading;
    std::mutex mutex;  // of the strip, the failure, and what follows
    std::condition_variable changed;
    int32_t wanted = -1;  // the strip to be read,
    int32_t read = -1;    // and the one that was read last
    bool ended = false;

    Mixture() = default;
    Mixture(const Mixture &) = delete;
    Mixture &operator=(const Mixture &) = delete;
    ~Mixture();
};

// Opens the picture; `percent` is less than 100.
MaybeFailure StartMixing(const std::string &file, int32_t percent, Mixture *mixture);

// The rows mixed; both arguments must outlive them.
RowSource MixedRows(const RowSource &rows, Mixture *mixture);
