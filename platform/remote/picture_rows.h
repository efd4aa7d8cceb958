// A dialog's picture on its way to whoever shows it: rows that have changed, a few at a time.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/internal/port.h"

namespace remote {

// What the other side has of a picture.
struct SentPicture {
    Rect drawn = {};
    std::vector<uint8_t> pixels;  // those of `drawn`, without padding
};

// Sends what has changed since the last time.
bool SendPicture(int line, const GrafPort &port, SentPicture *sent);

// False for bytes that are not rows of the port's picture.
bool TakeRows(std::string_view packed, GrafPort *port);

}  // namespace remote
