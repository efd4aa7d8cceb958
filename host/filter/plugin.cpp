#include "host/filter/plugin.h"

#include <algorithm>
#include <filesystem>

#include "host/document/document_mode.h"
#include "hybridmedian/public.h"
#include "photoshop/property_list.h"
#include "platform/files.h"
#include "platform/memory.h"
#include "platform/posix_paths.h"
#include "platform/resources.h"

namespace fs = std::filesystem;

namespace {

constexpr char kResourceName[] = "HybridMedian.rsrc";

MaybeFailure OpenResources(const std::string &path, int16_t *resources) {
    std::error_code error;
    FSSpec spec;
    const OSErr err = SpecFromPosixPath(fs::absolute(path, error), &spec);
    if (err != noErr) {
        return FileFailure(path, err == fnfErr ? "the plug-in's resource file is not there"
                                               : "the plug-in's resource file has no name that it could be "
                                                 "opened by");
    }
    *resources = FSpOpenResFile(&spec, fsRdPerm);
    if (*resources == -1) {
        return FileFailure(path, ResError() == mapReadErr ? "the plug-in's resource file is damaged"
                                                          : "the plug-in's resource file cannot be read");
    }
    return std::nullopt;
}

}  // namespace

Plugin::~Plugin() {
    if (resources != -1) {
        CloseResFile(resources);
    }
}

MaybeFailure OpenPlugin(const std::string &folder, Plugin *plugin) {
    // First, since its failure speaks of a wrong folder.
    if (MaybeFailure failure = LoadModule(folder, &plugin->module)) {
        return failure;
    }
    const std::string path = (fs::path(folder) / kResourceName).string();
    if (MaybeFailure failure = OpenResources(path, &plugin->resources)) {
        return failure;
    }
    const Handle list = GetResource(PIPropertyListType, kPropertyListID);
    if (list == nullptr ||
        !ParsePropertyList({*list, static_cast<size_t>(GetHandleSize(list))}, &plugin->info)) {
        return FileFailure(path, "the plug-in's resource file has no sound list of a filter's properties");
    }
    return std::nullopt;
}

MaybeFailure CheckMode(const PluginInfo &info, const Document &document, const std::string &file) {
    const auto &modes = info.modes;
    return std::find(modes.begin(), modes.end(), document.imageMode) != modes.end()
               ? std::nullopt
               : MaybeFailure(FileFailure(file, "its colour mode is " + ModeName(document.imageMode) +
                                                    ", which the plug-in does not filter"));
}
