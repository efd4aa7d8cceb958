#include "settings/preferences_file.h"
#include "tests/fuzz/fuzz_folder.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    static const FuzzFolder folder;
    folder.Write("WEMBpref", bytes, size);
    RunContext context = {};
    const int16_t file = ReadPreferences(&context);
    WritePreferences(&context, file);
    const size_t whole = 53248;
    if (std::filesystem::file_size(folder.path / "WEMBpref") != std::max(size, whole)) {
        std::abort();
    }
    return 0;
}
