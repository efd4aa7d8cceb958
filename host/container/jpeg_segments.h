// The marker segments of JPEG files.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/container/byte_file.h"

constexpr uint8_t kJpegApp0 = 0xE0;
constexpr uint8_t kJpegApp1 = 0xE1;
constexpr uint8_t kJpegApp2 = 0xE2;
constexpr uint8_t kJpegApp13 = 0xED;
constexpr uint8_t kJpegApp14 = 0xEE;
constexpr uint8_t kJpegApp15 = 0xEF;
constexpr uint8_t kJpegComment = 0xFE;
constexpr uint8_t kJpegTables = 0xDB;  // of quantisation
constexpr uint8_t kJpegScan = 0xDA;
constexpr size_t kMaxSegmentBytes = 65533;  // the length field counts itself

struct JpegSegment {
    uint8_t marker;
    std::string bytes;  // without marker and length
};

// Reads what comes before the first scan. `headBytes` is the length of the file up to the first segment that
// is neither an application's nor a comment. False for what is no JPEG, or is damaged before the scan.
bool ReadJpegSegments(const ByteFile &file, std::vector<JpegSegment> *segments, uint64_t *headBytes);

// The start of a file: its marker and the segments.
std::string PackJpegHead(const std::vector<JpegSegment> &segments);
