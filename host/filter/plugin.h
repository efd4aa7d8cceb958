// The plug-in as a whole: its resources, what they declare, and its module.
#pragma once

#include <string>

#include "host/document/document.h"
#include "host/filter/module.h"
#include "host/filter/plugin_info.h"
#include "host/report/failure.h"

struct Plugin {
    PluginInfo info;
    Module module;
    int16_t resources = -1;  // open as long as the plug-in is: the filter reads from it, too

    Plugin() = default;
    Plugin(const Plugin &) = delete;
    Plugin &operator=(const Plugin &) = delete;
    ~Plugin();
};

MaybeFailure OpenPlugin(const std::string &folder, Plugin *plugin);

// Refuses a document whose mode the plug-in does not declare.
MaybeFailure CheckMode(const PluginInfo &info, const Document &document, const std::string &file);
