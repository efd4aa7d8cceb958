#include "platform/faults/fault_injection.h"
#include "tests/fuzz/fuzz_folder.h"
#include "tests/support/hostile_host.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    static const FuzzFolder folder;
    if (size == 0) {
        return 0;
    }
    // Room for small images; larger ones go to disk, which has little space.
    faults::SetMemoryLimit(faults::BytesInUse() + (2 << 20));
    faults::SetDiskSpace(1 << 18);
    PlayHostileHost(bytes, size);
    return 0;
}
