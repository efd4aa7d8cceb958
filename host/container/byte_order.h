// Numbers in the bytes of files, in either order.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

// The caller makes sure that the bytes are there.
inline uint64_t NumberAt(std::string_view bytes, size_t place, int count, bool bigEndian) {
    uint64_t number = 0;
    for (int i = 0; i < count; ++i) {
        const int next = bigEndian ? i : count - 1 - i;
        number = number << 8 | static_cast<uint8_t>(bytes[place + static_cast<size_t>(next)]);
    }
    return number;
}

inline void SetNumber(std::string *bytes, size_t place, uint64_t number, int count, bool bigEndian) {
    for (int i = 0; i < count; ++i) {
        const int next = bigEndian ? count - 1 - i : i;
        (*bytes)[place + static_cast<size_t>(next)] = static_cast<char>(number >> 8 * i);
    }
}

inline std::string NumberBytes(uint64_t number, int count, bool bigEndian) {
    std::string bytes(static_cast<size_t>(count), '\0');
    SetNumber(&bytes, 0, number, count, bigEndian);
    return bytes;
}
