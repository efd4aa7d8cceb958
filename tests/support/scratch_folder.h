// A folder of its own for each test, which is also the Preferences folder, and memory that must balance.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>

#include "platform/faults/fault_injection.h"

class ScratchFolder : public testing::Test {
  protected:
    ScratchFolder();
    ~ScratchFolder() override;

    void TearDown() override;

    // Files that a run leaves behind, the preferences aside.
    size_t FileCount() const;

    std::filesystem::path folder;
    int64_t blocksKept = 0;  // that were seen to stay, and are to

  private:
    int64_t blocksBefore;
};
