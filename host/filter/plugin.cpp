#include "host/filter/plugin.h"

#include <dlfcn.h>

#include <algorithm>
#include <filesystem>

#include "host/document/document_mode.h"
#include "hybridmedian/public.h"
#include "photoshop/property_list.h"
#include "platform/files.h"
#include "platform/memory.h"
#include "platform/native_paths.h"
#include "platform/resources.h"

namespace fs = std::filesystem;

namespace {

constexpr char kPluginName[] = "HybridMedian.plugin";
constexpr char kModuleName[] = "HybridMedian.so";
constexpr char kInstalledFolder[] = "../lib/hymedian";  // relative to the program's folder
constexpr char kResourceName[] = "HybridMedian.rsrc";

MaybeFailure OpenResources(const std::string &path, int16_t *resources) {
    std::error_code error;
    FSSpec spec;
    const OSErr err = SpecFromNativePath(fs::absolute(path, error), &spec);
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

std::string DefaultPluginFolder() {
    std::error_code error;
    const fs::path here = fs::read_symlink("/proc/self/exe", error).parent_path();
    const fs::path beside = here / kPluginName;
    return fs::is_directory(beside, error)
               ? beside.string()
               : (here / kInstalledFolder / kPluginName).lexically_normal().string();
}

MaybeFailure LoadModule(const std::string &folder, Module *module) {
    const std::string path = (fs::path(folder) / kModuleName).string();
    std::error_code error;
    if (!fs::is_regular_file(path, error)) {
        return FileFailure(path, "the plug-in's module is not there; name its folder with --plugin");
    }
    // A path that begins with a slash is not searched for anywhere else.
    void *library = dlopen(fs::absolute(path, error).c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr) {
        return FileFailure(path, "the plug-in's module cannot be loaded");
    }
    module->entry = reinterpret_cast<FilterEntryProc>(dlsym(library, "main"));
    if (module->entry == nullptr) {
        dlclose(library);
        return FileFailure(path, "the module has no entry point 'main'");
    }
    return std::nullopt;
}

MaybeFailure OpenPlugin(const std::string &folder, Plugin *plugin) {
    // The module comes first, since its failure is the one that tells of a wrong folder.
    if (MaybeFailure failure = LoadModule(folder, &plugin->module)) {
        return failure;
    }
    const std::string path = (fs::path(folder) / kResourceName).string();
    // The module opens the file for itself, in a platform layer of its own.
    int16_t resources = -1;
    if (MaybeFailure failure = OpenResources(path, &resources)) {
        return failure;
    }
    const Handle list = GetResource(PIPropertyListType, kPropertyListID);
    const bool sound = list != nullptr &&
                       ParsePropertyList({*list, static_cast<size_t>(GetHandleSize(list))}, &plugin->info);
    CloseResFile(resources);
    if (!sound) {
        return FileFailure(path, "the plug-in's resource file has no sound list of a filter's properties");
    }
    return std::nullopt;
}

MaybeFailure CheckMode(const PluginInfo &info, const Document &document, const std::string &file) {
    const auto &modes = info.modes;
    return std::find(modes.begin(), modes.end(), ShownMode(document)) != modes.end()
               ? std::nullopt
               : MaybeFailure(FileFailure(file, "its colour mode is " + ModeName(document.imageMode) +
                                                    ", which the plug-in does not filter"));
}
