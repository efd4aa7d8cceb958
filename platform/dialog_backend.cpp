// Owns the choice of back end, and loads the module that holds the screen one.
#include <dlfcn.h>

#include <string>

#include "platform/dialog_backend.h"

namespace {

constexpr DialogBackend kShowsNothing = {
    []() -> Rect { return {}; },
    [](DialogRecord *) { return false; },
    [](DialogRecord *) {},
    [](DialogRecord *, EventRecord *) { return false; },
    [](ControlRecord *) -> TrackedPart { return {}; },
    [](DialogRecord *, int16_t, const EventRecord &) {},
    [](DialogRecord *, Point start) { return start; },
};

const DialogBackend *chosen;
bool triedScreen;

// The module is in the same folder as this library.
std::string ModulePath() {
    Dl_info self;
    if (dladdr(reinterpret_cast<const void *>(&UseScreenDialogs), &self) == 0) {
        return "libplatform-qt.so";
    }
    const std::string path = self.dli_fname;
    return path.substr(0, path.rfind('/') + 1) + "libplatform-qt.so";
}

}  // namespace

const DialogBackend &CurrentDialogBackend() {
    // Tried only once: what is missing now will not appear later.
    if (chosen == nullptr && !triedScreen) {
        triedScreen = true;
        (void)UseScreenDialogs();
    }
    return chosen == nullptr ? kShowsNothing : *chosen;
}

void SetDialogBackend(const DialogBackend *backend) {
    chosen = backend;
}

OSErr UseScreenDialogs() {
    // Never closed: what the module registers with the toolkit must outlive every dialog.
    void *module = dlopen(ModulePath().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (module == nullptr) {
        return kNoScreenModule;
    }
    using Maker = const DialogBackend *(*)();
    const auto make = reinterpret_cast<Maker>(dlsym(module, "ScreenDialogBackend"));
    const DialogBackend *backend = make == nullptr ? nullptr : make();
    if (backend == nullptr) {
        return kNoDisplay;
    }
    SetDialogBackend(backend);
    return noErr;
}

const char *ScreenDialogProblem(OSErr problem) {
    return problem == kNoScreenModule ? "Dialogs need Qt 6, which is not installed."
                                      : "Dialogs need a display, and there is none.";
}
