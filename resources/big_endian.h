// Builds a resource's bytes field by field. Numbers are big-endian if nothing else is said.
#pragma once

#include <string_view>
#include <vector>

#include "platform/types.h"

inline void AppendNumber(std::vector<uint8_t> *bytes, uint64_t number, int width) {
    for (int shift = 8 * (width - 1); shift >= 0; shift -= 8) {
        bytes->push_back(static_cast<uint8_t>(number >> shift));
    }
}

inline void AppendLittleEndian(std::vector<uint8_t> *bytes, uint64_t number, int width) {
    for (int shift = 0; shift < 8 * width; shift += 8) {
        bytes->push_back(static_cast<uint8_t>(number >> shift));
    }
}

inline void AppendText(std::vector<uint8_t> *bytes, std::string_view text) {
    for (const char c : text) {
        bytes->push_back(static_cast<uint8_t>(c));
    }
}

inline void AppendPString(std::vector<uint8_t> *bytes, std::string_view text) {
    bytes->push_back(static_cast<uint8_t>(text.size()));
    AppendText(bytes, text);
}

inline void PadTo(std::vector<uint8_t> *bytes, size_t multiple) {
    while (bytes->size() % multiple != 0) {
        bytes->push_back(0);
    }
}
