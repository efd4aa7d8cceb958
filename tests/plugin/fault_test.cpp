// Whole runs in which every allocation and every file call fails once, one at a time.
#include <algorithm>
#include <functional>
#include <iterator>

#include "photoshop/image_modes.h"
#include "tests/support/dialog_session.h"
#include "tests/support/test_host.h"

namespace {

struct RunCase {
    const char *name;
    int16_t mode;
    int32_t depth;
    int16_t planes;
    bool mask;
    bool dialog;
};

constexpr RunCase kRuns[] = {
    {"RGB", plugInModeRGBColor, 8, 3, false, false},
    {"RGBWithDialog", plugInModeRGBColor, 8, 3, false, true},
    {"Lab48WithAlphaAndMask", plugInModeLab48, 16, 4, true, false},
    {"Lab48WithAlphaMaskAndDialog", plugInModeLab48, 16, 4, true, true},
};

constexpr int kWidth = 7;
constexpr int kHeight = 5;
constexpr std::pair<int32_t, int32_t> kLastRowWritten = {6 * kHeight - 1, 6 * kHeight};

// The answer to the dialog: a different radius from the script's. The dialog keeps a line buffer for each
// preview it builds, at first and after the digit.
const std::vector<UserAction> kAnswer = {user::Key('3'), user::Key(kReturn)};
constexpr int64_t kMostPreviews = 2;

// The errors the system may give: for memory, for the disk, and from the File Manager.
constexpr OSErr kAllowed[] = {memFullErr, dskFulErr, ioErr, eofErr, fnfErr, dupFNErr, nsvErr};

TestDocument DocumentOf(const RunCase &c) {
    TestDocument document = {c.mode, c.depth, c.planes, {2, 3, 2 + kHeight, 3 + kWidth}, {}, {}};
    document.source = RandomBytes(static_cast<size_t>(kWidth * kHeight * c.planes * c.depth / 8), 21);
    if (c.mask) {
        document.mask.assign(kWidth * kHeight, 255);
        document.mask[9] = 3;
    }
    return document;
}

// Each kind of run, with its images in memory or on disk.
class Faults : public DialogTest, public testing::WithParamInterface<std::tuple<RunCase, bool>> {
  protected:
    TestRun Play(const TestHostOptions &options = {}) {
        const int64_t blocks = faults::BlocksInUse();
        const int64_t bytes = faults::BytesInUse();
        session = {};
        session.actions = kAnswer;
        UseScriptedDialogs(&session);
        faults::RefuseTemporaryMemory(onDisk);
        TestRun run = RunScripted(document, {{kRadiusKey, typeFloat, 2}}, options,
                                  c.dialog ? plugInDialogDisplay : plugInDialogDontDisplay);
        faults::RefuseTemporaryMemory(false);
        ExpectNothingKeptButLineBuffers(faults::BlocksInUse() - blocks, faults::BytesInUse() - bytes);
        return run;
    }

    // Runs with each fault that `arm` sets, until one lies beyond the end of the run. If a run could not read
    // the radius from its script, it uses the remembered one, which is the same.
    void FailEachOnce(const std::function<void(int64_t)> &arm) {
        const std::vector<uint8_t> right = Play().destination;
        EXPECT_EQ(session.done, c.dialog ? session.actions.size() : 0);
        int refused = 0;
        for (int64_t n = 1;; ++n) {
            SCOPED_TRACE(testing::Message() << "fault " << n);
            ASSERT_LT(n, 5000);
            arm(n);
            const TestRun run = Play();
            const bool done = !faults::FaultStruck();
            arm(0);
            if (run.result == noErr) {
                EXPECT_EQ(run.destination, right);
            } else {
                EXPECT_TRUE(IsAllowed(run.result)) << run.result;
                EXPECT_EQ(run.destination, document.source);
                ++refused;
            }
            if (done) {
                break;
            }
            // The next run removes what a failed deletion left behind.
            if (FileCount() > 0) {
                Play();
                EXPECT_EQ(FileCount(), 0u);
            }
        }
        EXPECT_GT(refused, 0);
    }

    const RunCase c = std::get<0>(GetParam());
    const bool onDisk = std::get<1>(GetParam());
    const TestDocument document = DocumentOf(c);

  private:
    // A dialog that cannot open counts as cancelled.
    bool IsAllowed(OSErr result) const {
        return std::find(std::begin(kAllowed), std::end(kAllowed), result) != std::end(kAllowed) ||
               (result == userCanceledErr && c.dialog && session.done == 0);
    }

    void ExpectNothingKeptButLineBuffers(int64_t blocks, int64_t bytes) {
        const int64_t lineBuffer = ((kWidth + 12) * 3 + 9) * c.depth / 8;
        EXPECT_LE(blocks, c.dialog ? kMostPreviews : 0);
        EXPECT_EQ(bytes, blocks * lineBuffer);
        blocksKept += blocks;
    }

    ScriptedSession session;
};

using DiskFaults = Faults;

std::string NameOf(const testing::TestParamInfo<std::tuple<RunCase, bool>> &run) {
    return std::get<0>(run.param).name + std::string(std::get<1>(run.param) ? "OnDisk" : "InMemory");
}
INSTANTIATE_TEST_SUITE_P(Runs, Faults, testing::Combine(testing::ValuesIn(kRuns), testing::Bool()), NameOf);
INSTANTIATE_TEST_SUITE_P(Runs, DiskFaults, testing::Combine(testing::ValuesIn(kRuns), testing::Values(true)),
                         NameOf);

TEST_P(Faults, EveryAllocationFailsOnce) {
    FailEachOnce(faults::FailAllocation);
}

TEST_P(DiskFaults, EveryFileCallFailsOnce) {
    FailEachOnce([](int64_t n) { faults::FailFileCall(n, ioErr); });
}

// A run must not report success when an image could not be made, or was made too late for the first rows.
TEST_P(Faults, HostsThatIgnoreErrorsGetNothingUnfiltered) {
    const std::vector<uint8_t> right = Play().destination;
    bool struck = true;
    for (int64_t n = 1; struck; ++n) {
        SCOPED_TRACE(testing::Message() << "fault " << n);
        faults::FailAllocation(n);
        const TestRun run = Play({.advanceState = false, .ignoreErrors = true});
        struck = faults::FaultStruck();
        faults::FailAllocation(0);
        const bool written = std::count(run.progress.begin(), run.progress.end(), kLastRowWritten) == 1;
        EXPECT_EQ(run.destination, written ? right : document.source);
        EXPECT_TRUE(written || run.result != noErr);
    }
}

TEST_P(DiskFaults, DiskIsFullAtEveryByte) {
    const std::vector<uint8_t> right = Play().destination;
    int refused = 0;
    // A run writes its images twice, cleared and filled, and the preferences last.
    for (int64_t space = 0; space < 12000; space += 17) {
        faults::SetDiskSpace(space);
        const TestRun run = Play();
        faults::SetDiskSpace(-1);
        EXPECT_TRUE(run.result == noErr || run.result == dskFulErr) << run.result;
        EXPECT_EQ(run.destination, run.result == noErr ? right : document.source) << space;
        EXPECT_EQ(FileCount(), 0u);
        refused += run.result != noErr;
    }
    EXPECT_GT(refused, 10);
}

}  // namespace
