// Gives each test a folder of its own, which is also the Preferences folder, and checks that all memory is
// released.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>

#include "platform/faults/fault_injection.h"

// In the environment of this process; null takes the variable away.
void SetVariable(const std::string &name, const char *value);
inline void SetVariable(const std::string &name, const std::filesystem::path &value) {
    SetVariable(name, value.string().c_str());
}

// False where links are not to be had for everybody.
bool MakeLink(const std::filesystem::path &target, const std::filesystem::path &link);

std::string ContentsOf(const std::filesystem::path &path);

class ScratchFolder : public testing::Test {
  protected:
    ScratchFolder();
    ~ScratchFolder() override;

    void TearDown() override;

    // The number of files that a run leaves behind, not counting the preferences.
    size_t FileCount() const;

    std::string Path(const std::string &name) const { return (folder / name).string(); }

    // The names of everything in the folder, or in its subfolder of that name.
    std::set<std::string> Names(const std::string &subfolder = ".") const;

    void WriteBytes(const std::string &name, const std::string &bytes) const;

    std::filesystem::path folder;
    int64_t blocksKept = 0;  // blocks that are expected to stay

  private:
    int64_t blocksBefore;
};
