#include "host/container/maker_note.h"

#include "host/container/byte_order.h"

namespace {

// Where notes begin their directory, behind a name of their maker; the longest known is 12 bytes.
constexpr size_t kLastStart = 16;
constexpr size_t kEntryBytes = 12;
constexpr uint64_t kMaxEntries = 512;
constexpr uint8_t kTypeBytes[] = {0, 1, 1, 2, 4, 8, 1, 1, 2, 4, 8, 4, 8, 4};

struct Values {
    uint64_t bytes;
    uint64_t offset;
};

// Of an entry; no bytes when the entry makes no sense.
Values ValuesOf(const std::string &note, size_t entry, bool bigEndian) {
    const uint64_t type = NumberAt(note, entry + 2, 2, bigEndian);
    const uint64_t count = NumberAt(note, entry + 4, 4, bigEndian);
    return {type < std::size(kTypeBytes) ? kTypeBytes[type] * count : 0,
            NumberAt(note, entry + 8, 4, bigEndian)};
}

// A directory counts from the file's start only if every one of its values lies inside the note in that way.
bool CountsFromFile(const std::string &note, size_t start, bool bigEndian, uint64_t from) {
    const uint64_t entries = NumberAt(note, start, 2, bigEndian);
    if (entries == 0 || entries > kMaxEntries || start + 2 + entries * kEntryBytes > note.size()) {
        return false;
    }
    const uint64_t tableEnd = from + start + 2 + entries * kEntryBytes;
    bool any = false;
    for (size_t i = 0; i < entries; ++i) {
        const auto [bytes, offset] = ValuesOf(note, start + 2 + i * kEntryBytes, bigEndian);
        if (bytes == 0 || (bytes > 4 && (offset < tableEnd || offset + bytes > from + note.size()))) {
            return false;
        }
        any = any || bytes > 4;
    }
    return any;
}

}  // namespace

void MoveMakerNote(std::string *note, uint64_t from, uint64_t to) {
    for (size_t start = 0; start <= kLastStart && start + 2 <= note->size(); start += 2) {
        for (const bool bigEndian : {false, true}) {
            if (!CountsFromFile(*note, start, bigEndian, from)) {
                continue;
            }
            const uint64_t entries = NumberAt(*note, start, 2, bigEndian);
            for (size_t i = 0; i < entries; ++i) {
                const size_t entry = start + 2 + i * kEntryBytes;
                if (const auto [bytes, offset] = ValuesOf(*note, entry, bigEndian); bytes > 4) {
                    SetNumber(note, entry + 8, offset + to - from, 4, bigEndian);
                }
            }
            return;
        }
    }
}
