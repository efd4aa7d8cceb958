// A folder of its own for each test, which is also the Preferences folder, and memory that must balance.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>

#include "platform/faults/fault_injection.h"

std::string ContentsOf(const std::filesystem::path &path);

class ScratchFolder : public testing::Test {
  protected:
    ScratchFolder();
    ~ScratchFolder() override;

    void TearDown() override;

    // Files that a run leaves behind, the preferences aside.
    size_t FileCount() const;

    std::string Path(const std::string &name) const { return (folder / name).string(); }

    // Of all that is in the folder, or in the one of that name in it.
    std::set<std::string> Names(const std::string &subfolder = ".") const;

    void WriteBytes(const std::string &name, const std::string &bytes) const;

    std::filesystem::path folder;
    int64_t blocksKept = 0;  // that were seen to stay, and are to

  private:
    int64_t blocksBefore;
};
