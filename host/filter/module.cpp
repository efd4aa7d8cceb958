#include "host/filter/module.h"

#include <dlfcn.h>

#include <filesystem>

namespace fs = std::filesystem;

namespace {

constexpr char kPluginName[] = "HybridMedian.plugin";
constexpr char kModuleName[] = "HybridMedian.so";
constexpr char kInstalledFolder[] = "../lib/hymedian";  // from the program's folder

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
    // With a slash in front of it the path is never searched for elsewhere.
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
