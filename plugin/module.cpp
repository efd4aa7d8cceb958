// The loadable module's only exported symbol. A C++ function of this kind cannot be named main, so the name
// is set for the assembler.
#include "platform/posix_paths.h"
#include "platform/resources.h"
#include "plugin/entry.h"

extern "C" __attribute__((visibility("default"))) void ModuleEntry(int16_t selector, FilterRecord *record,
                                                                   intptr_t *data,
                                                                   int16_t *result) __asm__("main");

namespace {

// Beside the module. Found on loading, while a path that the host gave is still relative to the same folder.
const std::string resourceFile = OwnFolder() + "/HybridMedian.rsrc";

}  // namespace

extern "C" void ModuleEntry(int16_t selector, FilterRecord *record, intptr_t *data, int16_t *result) {
    OfferResourceFile(&resourceFile);
    PluginMain(selector, record, data, result);
    WithdrawResourceFile();
}
