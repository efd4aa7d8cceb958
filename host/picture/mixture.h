// A result that is mixed with the picture that it was made from.
#pragma once

#include <cstdint>
#include <string>

#include "host/picture/picture.h"
#include "host/picture/picture_writer.h"
#include "host/report/failure.h"

// Reads the original once more, row by row.
struct Mixture {
    int32_t percent = 100;  // of the result
    Picture original;
    RowReader reader;
    Document row;  // one of the original's
    std::vector<uint8_t> mixed;
    MaybeFailure failure;  // why the rows ended early
};

// Opens the picture; `percent` is less than 100.
MaybeFailure StartMixing(const std::string &file, int32_t percent, Mixture *mixture);

// The rows mixed; both arguments must outlive them.
RowSource MixedRows(const RowSource &rows, Mixture *mixture);
