// Adds a test's own key-name table.
#pragma once

#include <string>
#include <vector>

struct TestKeyName {
    std::string key, name, units;
};

// Remains until faults::RemoveResources.
void AddKeyNameTable(const std::vector<TestKeyName> &records);
