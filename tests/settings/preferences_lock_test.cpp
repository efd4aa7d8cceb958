// Preferences that another process keeps locked.
#include <cstring>
#include <optional>

#include "settings/preferences_file.h"
#include "tests/support/held_lock.h"
#include "tests/support/scratch_folder.h"

namespace {

class PreferencesLock : public ScratchFolder {
  protected:
    std::string Contents() const { return ContentsOf(folder / "WEMBpref"); }

    static void WriteAll(uint8_t byte, int16_t refNum) {
        RunContext context = {};
        std::memset(context.preferencesHeader, byte, kPreferenceHeaderSize);
        WritePreferences(&context, refNum);
    }
};

// The file is neither replaced by defaults nor overwritten unread.
TEST_F(PreferencesLock, LeavesTheFileAsItIs) {
    WriteAll(1, 0);
    const std::string before = Contents();
    int16_t opened = 0;
    for (const bool lockedWhileRead : {false, true}) {
        std::optional<HeldLock> other;
        if (lockedWhileRead) {
            other.emplace(folder / "WEMBpref");
        }
        RunContext context = {};
        const int16_t ref = ReadPreferences(&context);
        EXPECT_EQ(context.preferencesHeader[0], lockedWhileRead ? 0 : 1);
        EXPECT_EQ(ref == kPreferencesLocked, lockedWhileRead);
        opened = lockedWhileRead ? opened : ref;
        other.reset();
        if (!lockedWhileRead) {
            other.emplace(folder / "WEMBpref");
        }
        WriteAll(2, ref);
        EXPECT_EQ(Contents(), before);
        EXPECT_EQ(IsLocked(folder / "WEMBpref"), !lockedWhileRead) << "the run's own lock was left";
    }
    RunContext context = {};
    const int16_t ref = ReadPreferences(&context);
    EXPECT_EQ(ref, opened) << "a file was left open";
    WriteAll(2, ref);
    EXPECT_NE(Contents(), before);
}

}  // namespace
