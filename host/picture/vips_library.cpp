#include "host/picture/vips_library.h"

#include <dlfcn.h>
#include <gmodule.h>
#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string_view>

namespace {

// In bytes: free blocks of at least this size go back to the system. Otherwise the heap of every thread that
// the libraries start would keep nearly everything it ever held.
constexpr int kLargeBlock = 1 << 20;

constexpr std::string_view kSystemError = "unix error: ";

// Messages in the library's own terms, or missing ones.
struct Translation {
    std::string_view said, meant;
};
constexpr Translation kTranslations[] = {
    {"", "the picture library does not say why"},
    {"libpng read error", "its pixels are damaged or cut short"},
    {"unable to parse image", "it is damaged or cut short"},
    {"bad seek", "it is damaged or cut short"},
};

bool KnowsHeif() {
    return g_type_from_name("VipsForeignLoadHeifSource") != 0 &&
           g_type_from_name("VipsForeignSaveHeifFile") != 0;
}

// The library's modules lie in a folder beside it.
bool LoadModule(const std::string &name) {
    Dl_info library = {};
    if (dladdr(reinterpret_cast<const void *>(&vips_version), &library) == 0) {
        return false;
    }
    const std::filesystem::path folder =
        std::filesystem::path(library.dli_fname).parent_path() /
        ("vips-modules-" + std::to_string(vips_version(0)) + "." + std::to_string(vips_version(1)));
    GModule *module = g_module_open((folder / (name + "." G_MODULE_SUFFIX)).c_str(), G_MODULE_BIND_LAZY);
    if (module != nullptr) {
        g_module_make_resident(module);
    }
    return module != nullptr;
}

// Warnings about damaged but readable files are nothing that a user can act on.
void Discard(const gchar *, GLogLevelFlags, const gchar *, gpointer) {}

}  // namespace

bool StartVips(const char *program) {
    mallopt(M_MMAP_THRESHOLD, kLargeBlock);
    mallopt(M_TRIM_THRESHOLD, kLargeBlock);
    g_log_set_default_handler(Discard, nullptr);
    // The library looks below this folder for its loaders of documents, slides and other formats. They are
    // not used here, and loading them takes longer than filtering a small picture.
    setenv("VIPSHOME", "/nonexistent", 0);
    if (vips_init(program) != 0) {
        return false;
    }
    // Every operation runs only once, so there is nothing to cache.
    vips_cache_set_max(0);
    return true;
}

bool HasHeif() {
    static const bool has = KnowsHeif() || (LoadModule("vips-heif") && KnowsHeif());
    return has;
}

std::string TakeVipsError() {
    std::string text = vips_error_buffer();
    vips_error_clear();
    // The system's reason comes on the line after the name of the call that failed.
    if (const size_t second = text.find('\n') + 1;
        text.compare(second, kSystemError.size(), kSystemError) == 0) {
        text.erase(0, second);
    }
    text.resize(std::min(text.size(), text.find('\n')));
    const size_t source = text.find(": ");
    text = source == std::string::npos ? text : text.substr(source + 2);
    while (!text.empty() && (text.back() == '.' || text.back() == ' ')) {
        text.pop_back();
    }
    const auto *known =
        std::find_if(std::begin(kTranslations), std::end(kTranslations), [&](const Translation &entry) {
            return entry.said.empty() ? text.empty() : text.starts_with(entry.said);
        });
    return known == std::end(kTranslations) ? text : std::string(known->meant);
}
