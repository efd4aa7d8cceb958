// The loadable module's only exported symbol. A C++ function of this kind cannot be named main, so the name
// is set for the assembler.
#include "plugin/entry.h"

extern "C" __attribute__((visibility("default"))) void ModuleEntry(int16_t selector, FilterRecord *record,
                                                                   intptr_t *data,
                                                                   int16_t *result) __asm__("main");

extern "C" void ModuleEntry(int16_t selector, FilterRecord *record, intptr_t *data, int16_t *result) {
    PluginMain(selector, record, data, result);
}
