// The loadable module's entry point. A C++ function of this kind cannot be named main, so the name is set for
// the assembler.
#include "platform/resources.h"
#include "plugin/entry.h"

extern "C" void ModuleEntry(int16_t selector, FilterRecord *record, intptr_t *data,
                            int16_t *result) __asm__("main");

extern "C" void ModuleEntry(int16_t selector, FilterRecord *record, intptr_t *data, int16_t *result) {
    OfferOwnResources();
    PluginMain(selector, record, data, result);
    WithdrawResources();
}
