// Reads preferences, writes them and reads them again: after that the file is whole and no longer changes.
#include <iterator>

#include "settings/preferences_file.h"
#include "tests/fuzz/fuzz_folder.h"

namespace {

void ReadAndWrite() {
    RunContext context = {};
    const int16_t file = ReadPreferences(&context);
    WritePreferences(&context, file);
}

std::string Contents(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size) {
    static const FuzzFolder folder;
    folder.Write("WEMBpref", bytes, size);
    ReadAndWrite();
    const std::string once = Contents(folder.path / "WEMBpref");
    ReadAndWrite();
    const size_t whole = 53248;
    if (once.size() != std::max(size, whole) || Contents(folder.path / "WEMBpref") != once) {
        std::abort();
    }
    return 0;
}
