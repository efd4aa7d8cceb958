// Runs a fuzz target over the files in the given folders; a missing folder counts as empty.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size);

int main(int count, char **folders) {
    int replayed = 0;
    for (int i = 1; i < count; ++i) {
        std::error_code none;
        for (const auto &entry : std::filesystem::directory_iterator(folders[i], none)) {
            std::printf("%s\n", entry.path().c_str());
            std::fflush(stdout);
            std::ifstream file(entry.path(), std::ios::binary);
            const std::vector<char> input{std::istreambuf_iterator<char>(file), {}};
            LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t *>(input.data()), input.size());
            ++replayed;
        }
    }
    return replayed > 0 ? 0 : 1;
}
