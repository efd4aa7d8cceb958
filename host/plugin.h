// The plug-in as a whole: its resources, what they declare, and its module.
#pragma once

#include <string>

#include "host/document.h"
#include "host/failure.h"
#include "host/module.h"
#include "host/plugin_info.h"

struct Plugin {
    PluginInfo info;
    Module module;
};

// The resource file stays open with the module, to the end of the process: the filter reads from it too.
MaybeFailure OpenPlugin(const std::string &folder, Plugin *plugin);

// Refuses a document whose mode the plug-in does not declare.
MaybeFailure CheckMode(const PluginInfo &info, const Document &document, const std::string &file);
