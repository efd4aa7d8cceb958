// A key-name table of a test's own.
#pragma once

#include <string>
#include <vector>

#include "platform/faults/fault_injection.h"

struct TestKeyName {
    std::string key, name, units;
};

inline void AddKeyNameTable(const std::vector<TestKeyName> &records) {
    std::string table(64, '-');
    for (const TestKeyName &record : records) {
        std::string bytes = record.key + " " + record.name;
        bytes.resize(48, '_');
        bytes += record.units;
        bytes.resize(64, '_');
        table += bytes;
    }
    faults::AddResource(FourCharCode("TEXT"), 9999, {table.begin(), table.end()});
}
