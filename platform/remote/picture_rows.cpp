#include "platform/remote/picture_rows.h"

#include <algorithm>
#include <cstring>

#include "platform/packing.h"
#include "platform/remote/line.h"
#include "platform/remote/protocol.h"

namespace {

constexpr size_t kPixelBytes = 4;

size_t RowBytes(const Rect &rows) {
    return static_cast<size_t>(rows.right - rows.left) * kPixelBytes;
}

bool SendRows(int line, const Rect &rows, const uint8_t *pixels) {
    std::string packed;
    AppendRecord(&packed, rows);
    packed.append(reinterpret_cast<const char *>(pixels),
                  RowBytes(rows) * static_cast<size_t>(rows.bottom - rows.top));
    return remote::SendPacket(line, remote::kRows, packed);
}

std::vector<uint8_t> PixelsOf(const GrafPort &port) {
    std::vector<uint8_t> pixels;
    for (int32_t v = port.drawn.top; v < port.drawn.bottom; ++v) {
        const uint8_t *row = ports::PixelAt(port.pixMap, port.drawn.left, v);
        pixels.insert(pixels.end(), row, row + RowBytes(port.drawn));
    }
    return pixels;
}

}  // namespace

bool remote::SendPicture(int line, const GrafPort &port, SentPicture *sent) {
    const Rect &drawn = port.drawn;
    if (ports::IsEmpty(drawn)) {
        return true;
    }
    std::vector<uint8_t> pixels = PixelsOf(port);
    const bool known = std::memcmp(&drawn, &sent->drawn, sizeof drawn) == 0;
    const size_t rowBytes = RowBytes(drawn);
    const auto rowsEach = static_cast<int16_t>((kLargestContent - sizeof drawn) / rowBytes);
    for (int32_t top = drawn.top; top < drawn.bottom; top += rowsEach) {
        const Rect rows = {static_cast<int16_t>(top), drawn.left,
                           static_cast<int16_t>(std::min<int32_t>(top + rowsEach, drawn.bottom)),
                           drawn.right};
        const size_t from = static_cast<size_t>(top - drawn.top) * rowBytes;
        const size_t size = static_cast<size_t>(rows.bottom - rows.top) * rowBytes;
        const bool same = known && std::memcmp(&pixels[from], &sent->pixels[from], size) == 0;
        if (!same && !SendRows(line, rows, &pixels[from])) {
            return false;
        }
    }
    *sent = {drawn, std::move(pixels)};
    return true;
}

bool remote::TakeRows(std::string_view packed, GrafPort *port) {
    Rect rows;
    if (!TakeRecord(&packed, &rows) || ports::IsEmpty(rows) || !ports::Holds(port->pixMap.bounds, rows) ||
        packed.size() != RowBytes(rows) * static_cast<size_t>(rows.bottom - rows.top)) {
        return false;
    }
    for (int32_t v = rows.top; v < rows.bottom; ++v) {
        std::memcpy(ports::PixelAt(port->pixMap, rows.left, v), packed.data(), RowBytes(rows));
        packed.remove_prefix(RowBytes(rows));
    }
    return true;
}
