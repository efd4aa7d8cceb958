#include "platform/posix_paths.h"
#include "platform/resources.h"
#include "settings/key_names.h"
#include "tests/fuzz/fuzz_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    static const FuzzFolder folder;
    folder.Write("test.rsrc", bytes, size);
    FSSpec spec;
    SpecFromPosixPath(folder.path / "test.rsrc", &spec);
    const int16_t file = FSpOpenResFile(&spec, 1);
    if (file > 0) {
        char name[kKeyNameSize], units[kKeyNameSize];
        _LookupParamKeyName(FourCharCode("nRad"), name, units, static_cast<int32_t>(size % 13));
        CloseResFile(file);
    }
    return 0;
}
