#include "platform/internal/resource_map.h"

namespace {

// Reads big-endian numbers; once a read falls outside the bytes, it and all later ones give 0 and `sound` is
// false.
struct Reader {
    const std::vector<uint8_t> *bytes;
    bool sound = true;

    uint32_t Number(size_t offset, size_t width) {
        if (offset > bytes->size() || width > bytes->size() - offset) {
            sound = false;
        }
        uint32_t number = 0;
        for (size_t i = 0; sound && i < width; ++i) {
            number = (number << 8) | (*bytes)[offset + i];
        }
        return number;
    }
};

// Where the map keeps the offset of its type list, and the sizes of its two kinds of entries.
constexpr size_t kTypeListOffsetPlace = 24;
constexpr size_t kTypeSize = 8;
constexpr size_t kReferenceSize = 12;

// Counts are stored minus one, so 0xFFFF means none.
size_t Count(uint32_t lessOne) {
    return static_cast<uint16_t>(lessOne + 1);
}

bool AddEntry(Reader *reader, size_t dataOffset, OSType type, size_t reference,
              std::vector<ResourceEntry> *entries) {
    const auto id = static_cast<int16_t>(reader->Number(reference, 2));
    const size_t place = dataOffset + reader->Number(reference + 5, 3);
    const size_t size = reader->Number(place, 4);
    reader->Number(reference + 8, 4);  // space for a handle, unused but required
    if (!reader->sound || size > reader->bytes->size() - place - 4) {
        return false;
    }
    entries->push_back({type, id, reader->bytes->data() + place + 4, size});
    return true;
}

}  // namespace

bool ParseResourceFile(const std::vector<uint8_t> &bytes, std::vector<ResourceEntry> *entries) {
    Reader reader = {&bytes};
    const size_t dataOffset = reader.Number(0, 4);
    const size_t mapOffset = reader.Number(4, 4);
    const size_t typeList = mapOffset + reader.Number(mapOffset + kTypeListOffsetPlace, 2);
    const size_t typeCount = Count(reader.Number(typeList, 2));
    for (size_t t = 0; reader.sound && t < typeCount; ++t) {
        const size_t entry = typeList + 2 + t * kTypeSize;
        const OSType type = reader.Number(entry, 4);
        const size_t count = Count(reader.Number(entry + 4, 2));
        const size_t references = typeList + reader.Number(entry + 6, 2);
        for (size_t r = 0; reader.sound && r < count; ++r) {
            // No two entries of a sound file share bytes, so it cannot have more entries than bytes.
            if (entries->size() > bytes.size() ||
                !AddEntry(&reader, dataOffset, type, references + r * kReferenceSize, entries)) {
                return false;
            }
        }
    }
    return reader.sound;
}
