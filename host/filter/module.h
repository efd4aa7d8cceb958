// The loadable module that holds the filter.
#pragma once

#include <string>

#include "host/report/failure.h"
#include "photoshop/selectors.h"

struct Module {
    FilterEntryProc entry = nullptr;
    intptr_t data = 0;  // the filter's own, kept from run to run
};

// HybridMedian.plugin beside the program; where that does not exist, where it is installed.
std::string DefaultPluginFolder();

// Loads HybridMedian.so of the folder. A module stays loaded to the end of the process.
MaybeFailure LoadModule(const std::string &folder, Module *module);
