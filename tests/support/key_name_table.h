// A key-name table of a test's own.
#pragma once

#include <string>
#include <vector>

struct TestKeyName {
    std::string key, name, units;
};

// Stays until faults::RemoveResources.
void AddKeyNameTable(const std::vector<TestKeyName> &records);
