#include "platform/remote/line.h"

#include <sys/socket.h>
#include <sys/time.h>

#include <cerrno>

bool remote::MakeLine(int ends[2]) {
    return socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) == 0;
}

void remote::SetPatience(int line, int milliseconds) {
    const timeval time = {milliseconds / 1000, milliseconds % 1000 * 1000L};
    setsockopt(line, SOL_SOCKET, SO_SNDTIMEO, &time, sizeof time);
    setsockopt(line, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
}

bool remote::SendPacket(int line, char mark, std::string_view content) {
    if (content.size() > kLargestContent) {
        return false;
    }
    std::string bytes(1, mark);
    bytes += content;
    ssize_t sent = 0;
    do {
        sent = send(line, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    } while (sent < 0 && errno == EINTR);
    return sent == static_cast<ssize_t>(bytes.size());
}

bool remote::ReceivePacket(int line, Packet *packet) {
    std::string bytes(1 + kLargestContent, 0);
    ssize_t size = 0;
    do {
        // With this flag the size is that of the whole packet, even if it did not fit.
        size = recv(line, bytes.data(), bytes.size(), MSG_TRUNC);
    } while (size < 0 && errno == EINTR);
    if (size <= 0 || static_cast<size_t>(size) > bytes.size()) {
        return false;
    }
    packet->mark = bytes[0];
    packet->content = bytes.substr(1, static_cast<size_t>(size) - 1);
    return true;
}
