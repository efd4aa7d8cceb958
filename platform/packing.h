// Records and texts in one string of bytes, in native byte order: for data that never leaves the machine.
#pragma once

#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

template <typename Record>
void AppendRecord(std::string *packed, const Record &record) {
    static_assert(std::is_trivially_copyable_v<Record>);
    packed->append(reinterpret_cast<const char *>(&record), sizeof record);
}

inline void AppendText(std::string *packed, std::string_view text) {
    AppendRecord(packed, uint64_t{text.size()});
    packed->append(text);
}

// Both take from the front, and return false when what is left is too short.
template <typename Record>
bool TakeRecord(std::string_view *packed, Record *record) {
    static_assert(std::is_trivially_copyable_v<Record>);
    if (packed->size() < sizeof *record) {
        return false;
    }
    std::memcpy(record, packed->data(), sizeof *record);
    packed->remove_prefix(sizeof *record);
    return true;
}

inline bool TakeText(std::string_view *packed, std::string *text) {
    uint64_t size = 0;
    if (!TakeRecord(packed, &size) || packed->size() < size) {
        return false;
    }
    *text = packed->substr(0, size);
    packed->remove_prefix(size);
    return true;
}
