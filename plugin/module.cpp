// The loadable module's only exported symbol. A C++ function cannot be called main, so the name is the
// assembler's.
#include "plugin/entry.h"

extern "C" __attribute__((visibility("default"))) void ModuleEntry(int16_t selector, FilterRecord *record,
                                                                   intptr_t *data,
                                                                   int16_t *result) __asm__("main");

extern "C" void ModuleEntry(int16_t selector, FilterRecord *record, intptr_t *data, int16_t *result) {
    PluginMain(selector, record, data, result);
}
