// A line between a dialog and whoever shows it: a socket pair on which packets arrive whole and in order.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace remote {

// In bytes, without the mark.
constexpr size_t kLargestContent = 1 << 16;

struct Packet {
    char mark;
    std::string content;
};

// No other program inherits the two ends.
bool MakeLine(int ends[2]);

// How long the next packets are waited for, sent or received.
void SetPatience(int line, int milliseconds);

// Both return false when nothing more can come of the line: the other side has hung up or takes too long, or
// a packet is too large.
bool SendPacket(int line, char mark, std::string_view content);
bool ReceivePacket(int line, Packet *packet);

}  // namespace remote
