#include "resources/key_name_table.h"

#include "resources/big_endian.h"

namespace {

constexpr size_t kRecordSize = 64;
constexpr size_t kUnitsOffset = 48;

struct KeyName {
    std::string_view key;
    std::string_view name;
    std::string_view units;
};

constexpr KeyName kRecords[] = {
    {"Key ", "Name", "Units"},  // the heading
    {"nRad", "Radius", "pixels"},
};

void FillUpTo(std::vector<uint8_t> *bytes, size_t size) {
    bytes->resize(size, '_');
}

}  // namespace

std::vector<uint8_t> KeyNameTable() {
    std::vector<uint8_t> table;
    for (const KeyName &record : kRecords) {
        const size_t start = table.size();
        AppendText(&table, record.key);
        AppendText(&table, " ");
        AppendText(&table, record.name);
        FillUpTo(&table, start + kUnitsOffset);
        AppendText(&table, record.units);
        FillUpTo(&table, start + kRecordSize);
    }
    return table;
}
