#include "tests/support/scratch_folder.h"

#include <cstdlib>
#include <iterator>
#include <string>

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
    EXPECT_EQ(faults::BlocksInUse(), blocksBefore + blocksKept) << "blocks were not released";
}

size_t ScratchFolder::FileCount() const {
    const auto count = std::distance(std::filesystem::directory_iterator(folder), {});
    return static_cast<size_t>(count) - (std::filesystem::exists(folder / "WEMBpref") ? 1 : 0);
}
