#include "tests/support/scratch_folder.h"

#include <cstdlib>
#include <deque>
#include <fstream>
#include <iterator>
#include <random>

// The environment may keep the texts themselves. A name alone removes the variable on POSIX, an empty value
// on Windows.
void SetVariable(const std::string &name, const char *value) {
    static std::deque<std::string> kept;
    putenv(kept.emplace_back(name + "=" + (value == nullptr ? "" : value)).data());
    if (value == nullptr) {
        putenv(kept.emplace_back(name).data());
    }
}

bool MakeLink(const std::filesystem::path &target, const std::filesystem::path &link) {
    std::error_code error;
    std::filesystem::create_symlink(target, link, error);
    return !error;
}

std::string ContentsOf(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

ScratchFolder::ScratchFolder() {
    std::random_device random;
    do {
        folder = testing::TempDir() + "hymedian-" + std::to_string(random());
    } while (!std::filesystem::create_directory(folder));
    SetVariable("HYMEDIAN_PREFERENCES", folder);
    blocksBefore = faults::BlocksInUse();
}

ScratchFolder::~ScratchFolder() {
    faults::SetMemoryLimit(-1);
    faults::FailAllocation(0);
    faults::RefuseTemporaryMemory(false);
    faults::FailFileCall(0, noErr);
    faults::SetDiskSpace(-1);
    std::filesystem::remove_all(folder);
}

void ScratchFolder::TearDown() {
    faults::RemoveResources();
    EXPECT_EQ(faults::BlocksInUse(), blocksBefore + blocksKept) << "blocks were not released";
}

size_t ScratchFolder::FileCount() const {
    const std::set<std::string> names = Names();
    return names.size() - names.count("WEMBpref");
}

std::set<std::string> ScratchFolder::Names(const std::string &subfolder) const {
    std::set<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(folder / subfolder)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

void ScratchFolder::WriteBytes(const std::string &name, const std::string &bytes) const {
    std::ofstream(folder / name, std::ios::binary) << bytes;
}
