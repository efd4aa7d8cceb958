#include "tests/support/key_name_table.h"

#include "hybridmedian/public.h"
#include "platform/faults/fault_injection.h"

void AddKeyNameTable(const std::vector<TestKeyName> &records) {
    std::string table(64, '-');
    for (const TestKeyName &record : records) {
        std::string bytes = record.key + " " + record.name;
        bytes.resize(48, '_');
        bytes += record.units;
        bytes.resize(64, '_');
        table += bytes;
    }
    faults::AddResource(FourCharCode("TEXT"), kKeyNameTableID, {table.begin(), table.end()});
}
