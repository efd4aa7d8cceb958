// Two processes sharing one Preferences folder, both forced to keep their images there.
#include <sys/wait.h>
#include <unistd.h>

#include <vector>

#include "hybridmedian/public.h"
#include "photoshop/image_modes.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_host.h"
#include "tests/support/test_images.h"

namespace {

constexpr int kRounds = 100;

class SharedFolder : public ScratchFolder {
  protected:
    static std::vector<uint8_t> Filter(const TestDocument &document, double radius) {
        const TestRun run = RunScripted(document, {{kRadiusKey, typeFloat, radius}});
        return run.result == noErr ? run.destination : std::vector<uint8_t>();
    }

    // Filters repeatedly on disk; the exit status is the number of wrong results.
    static pid_t StartChild(const TestDocument &document, double radius,
                            const std::vector<uint8_t> &expected) {
        const pid_t child = fork();
        if (child == 0) {
            faults::RefuseTemporaryMemory(true);
            int wrong = 0;
            for (int round = 0; round < kRounds; ++round) {
                wrong += Filter(document, radius) != expected;
            }
            _exit(wrong);
        }
        return child;
    }
};

TEST_F(SharedFolder, BothProcessesGetTheirOwnResults) {
    pid_t children[2];
    for (const int i : {0, 1}) {
        const auto planes = static_cast<int16_t>(3 + i);
        const TestDocument document = {plugInModeRGBColor,
                                       8,
                                       planes,
                                       {0, 0, 11, 13},
                                       RandomBytes(static_cast<size_t>(11 * 13 * planes), 5),
                                       {}};
        const std::vector<uint8_t> expected = Filter(document, 1 + i);
        ASSERT_FALSE(expected.empty());
        children[i] = StartChild(document, 1 + i, expected);
    }
    for (const pid_t child : children) {
        int status = 0;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 0) << "wrong results";
    }
    EXPECT_EQ(FileCount(), 0u) << "work files were left";
}

}  // namespace
