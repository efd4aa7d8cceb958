#include "host/container/jpeg_segments.h"

#include <algorithm>

#include "host/container/byte_order.h"

namespace {

constexpr char kStart[] = "\xFF\xD8";
constexpr size_t kMaxSegments = 4096;  // chosen: 256 MB of them, more than any program writes

bool IsOfHead(uint8_t marker) {
    return (marker >= kJpegApp0 && marker <= kJpegApp15) || marker == kJpegComment;
}

}  // namespace

bool ReadJpegSegments(const ByteFile &file, std::vector<JpegSegment> *segments, uint64_t *headBytes) {
    std::string bytes;
    if (!ReadAt(file, 0, 2, &bytes) || bytes != kStart) {
        return false;
    }
    *headBytes = 2;
    uint64_t place = 2;
    for (bool inHead = true; segments->size() < kMaxSegments;) {
        if (!ReadAt(file, place, 4, &bytes) || bytes[0] != '\xFF') {
            return false;
        }
        const auto marker = static_cast<uint8_t>(bytes[1]);
        if (marker == 0xFF) {
            ++place;  // a fill byte
            continue;
        }
        const uint64_t length = NumberAt(bytes, 2, 2, true);
        inHead = inHead && IsOfHead(marker);
        if (inHead) {
            *headBytes = place + 2 + length;
        }
        JpegSegment segment = {marker, {}};
        if (length < 2 || !ReadAt(file, place + 4, length - 2, &segment.bytes)) {
            return false;
        }
        segments->push_back(std::move(segment));
        if (marker == kJpegScan) {
            return true;
        }
        place += 2 + length;
    }
    return false;
}

std::string PackJpegHead(const std::vector<JpegSegment> &segments) {
    std::string head = kStart;
    for (const JpegSegment &segment : segments) {
        head += '\xFF';
        head += static_cast<char>(segment.marker);
        head += NumberBytes(segment.bytes.size() + 2, 2, true) + segment.bytes;
    }
    return head;
}
