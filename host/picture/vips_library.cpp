#include "host/picture/vips_library.h"

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <string_view>

namespace {

// Of so many bytes or more, free memory goes back to the system. The heap of every thread that libraries
// start would else keep nearly all that it ever held.
constexpr int kLargeBlock = 1 << 20;

constexpr std::string_view kSystemError = "unix error: ";

// What the library says in its own terms, or does not say.
struct Translation {
    std::string_view said, meant;
};
constexpr Translation kTranslations[] = {
    {"", "the picture library does not say why"},
    {"libpng read error", "its pixels are damaged or cut short"},
    {"unable to parse image", "it is damaged or cut short"},
};

// Warnings of damaged but readable files are nothing that the user could act on.
void Discard(const gchar *, GLogLevelFlags, const gchar *, gpointer) {}

}  // namespace

bool StartVips(const char *program) {
    mallopt(M_MMAP_THRESHOLD, kLargeBlock);
    mallopt(M_TRIM_THRESHOLD, kLargeBlock);
    g_log_set_default_handler(Discard, nullptr);
    // Its loaders of documents, slides and strangers' formats are not used here; to load them takes longer
    // than to filter a small picture. They are looked for below this folder.
    setenv("VIPSHOME", "/nonexistent", 0);
    if (vips_init(program) != 0) {
        return false;
    }
    // Every operation runs once.
    vips_cache_set_max(0);
    return true;
}

std::string TakeVipsError() {
    std::string text = vips_error_buffer();
    vips_error_clear();
    // What the system says of a call that failed comes behind the call's name.
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
    const auto *known = std::find_if(std::begin(kTranslations), std::end(kTranslations),
                                     [&](const Translation &entry) { return entry.said == text; });
    return known == std::end(kTranslations) ? text : std::string(known->meant);
}
