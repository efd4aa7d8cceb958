#include "resources/resource_file.h"

#include <map>

#include "resources/big_endian.h"

namespace {

// After its header the format reserves space for the system and the application.
constexpr size_t kDataOffset = 256;
// A copy of the header, a handle, a file number, attributes, and two offsets.
constexpr size_t kMapHeaderSize = 28;
constexpr size_t kReservedMapBytes = 16 + 4 + 2 + 2;  // all of those but the offsets; left zero
constexpr size_t kTypeSize = 8;
constexpr uint64_t kNoName = 0xFFFF;

struct Placed {
    int16_t id;
    size_t offset;  // from the start of the data
};

}  // namespace

std::vector<uint8_t> ResourceFileBytes(const std::vector<ResourceToWrite> &resources) {
    std::vector<uint8_t> data;
    std::map<OSType, std::vector<Placed>> byType;
    for (const ResourceToWrite &resource : resources) {
        byType[resource.type].push_back({resource.id, data.size()});
        AppendNumber(&data, resource.data.size(), 4);
        data.insert(data.end(), resource.data.begin(), resource.data.end());
    }

    std::vector<uint8_t> types;
    std::vector<uint8_t> references;
    const size_t typeListSize = 2 + byType.size() * kTypeSize;
    AppendNumber(&types, byType.size() - 1, 2);
    for (const auto &[type, placed] : byType) {
        AppendNumber(&types, type, 4);
        AppendNumber(&types, placed.size() - 1, 2);
        AppendNumber(&types, typeListSize + references.size(), 2);
        for (const Placed &resource : placed) {
            AppendNumber(&references, static_cast<uint16_t>(resource.id), 2);
            AppendNumber(&references, kNoName, 2);
            AppendNumber(&references, 0, 1);  // attributes
            AppendNumber(&references, resource.offset, 3);
            AppendNumber(&references, 0, 4);  // room for a handle
        }
    }
    const size_t mapSize = kMapHeaderSize + types.size() + references.size();

    std::vector<uint8_t> file;
    AppendNumber(&file, kDataOffset, 4);
    AppendNumber(&file, kDataOffset + data.size(), 4);
    AppendNumber(&file, data.size(), 4);
    AppendNumber(&file, mapSize, 4);
    file.resize(kDataOffset);
    file.insert(file.end(), data.begin(), data.end());
    file.resize(file.size() + kReservedMapBytes);
    AppendNumber(&file, kMapHeaderSize, 2);
    AppendNumber(&file, mapSize, 2);  // where names would begin
    file.insert(file.end(), types.begin(), types.end());
    file.insert(file.end(), references.begin(), references.end());
    return file;
}
