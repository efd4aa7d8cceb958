// The whole plug-in: what its resources declare, and its module.
#pragma once

#include <string>

#include "host/document/document.h"
#include "host/filter/plugin_info.h"
#include "host/report/failure.h"
#include "photoshop/selectors.h"

// The loadable module that holds the filter.
struct Module {
    FilterEntryProc entry = nullptr;
    intptr_t data = 0;  // the filter's own, kept from run to run
};

struct Plugin {
    PluginInfo info;
    Module module;
};

// HybridMedian.plugin next to the program; if there is none, where it is installed.
std::string DefaultPluginFolder();

// Loads HybridMedian.so from the folder. The module stays loaded until the process ends.
MaybeFailure LoadModule(const std::string &folder, Module *module);

MaybeFailure OpenPlugin(const std::string &folder, Plugin *plugin);

// Refuses a document whose mode the plug-in does not declare.
MaybeFailure CheckMode(const PluginInfo &info, const Document &document, const std::string &file);
