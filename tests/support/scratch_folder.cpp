#include "tests/support/scratch_folder.h"

#include <cstdlib>
#include <fstream>
#include <iterator>

std::string ContentsOf(const std::filesystem::path &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

ScratchFolder::ScratchFolder() {
    std::string name = testing::TempDir() + "hymedian-XXXXXX";
    folder = mkdtemp(name.data());
    setenv("HYMEDIAN_PREFERENCES", folder.c_str(), 1);
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
        names.insert(entry.path().filename());
    }
    return names;
}

void ScratchFolder::WriteBytes(const std::string &name, const std::string &bytes) const {
    std::ofstream(folder / name, std::ios::binary) << bytes;
}
