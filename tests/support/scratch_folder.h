// A folder of its own for each test, which is also the Preferences folder, and memory that must balance.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "platform/faults/fault_injection.h"

class ScratchFolder : public testing::Test {
  protected:
    ScratchFolder() {
        std::string name = testing::TempDir() + "hymedian-XXXXXX";
        folder = mkdtemp(name.data());
        setenv("HYMEDIAN_PREFERENCES", folder.c_str(), 1);
        blocksBefore = faults::BlocksInUse();
    }

    ~ScratchFolder() override {
        faults::SetMemoryLimit(-1);
        faults::FailAllocation(0);
        faults::RefuseTemporaryMemory(false);
        faults::FailFileCall(0, noErr);
        faults::SetDiskSpace(-1);
        std::filesystem::remove_all(folder);
    }

    void TearDown() override {
        EXPECT_EQ(faults::BlocksInUse(), blocksBefore + blocksKept) << "blocks were not released";
    }

    // Files that a run leaves behind, the preferences aside.
    size_t FileCount() const {
        const auto count = std::distance(std::filesystem::directory_iterator(folder), {});
        return static_cast<size_t>(count) - (std::filesystem::exists(folder / "WEMBpref") ? 1 : 0);
    }

    std::filesystem::path folder;
    int64_t blocksKept = 0;  // that were seen to stay, and are to

  private:
    int64_t blocksBefore;
};
