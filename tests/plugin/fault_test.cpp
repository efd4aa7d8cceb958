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
    bool onDisk;
    bool dialog = false;
};

constexpr RunCase kRuns[] = {
    {"RGB in memory", plugInModeRGBColor, 8, 3, false, false},
    {"RGB on disk", plugInModeRGBColor, 8, 3, false, true},
    {"Lab 48 with alpha and mask in memory", plugInModeLab48, 16, 4, true, false},
    {"Lab 48 with alpha and mask on disk", plugInModeLab48, 16, 4, true, true},
    {"RGB in memory with the dialog", plugInModeRGBColor, 8, 3, false, false, true},
    {"RGB on disk with the dialog", plugInModeRGBColor, 8, 3, false, true, true},
    {"Lab 48 with alpha, mask and the dialog in memory", plugInModeLab48, 16, 4, true, false, true},
    {"Lab 48 with alpha, mask and the dialog on disk", plugInModeLab48, 16, 4, true, true, true},
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

class Faults : public DialogTest {
  protected:
    TestRun Play(const RunCase &c, const TestDocument &document, const TestHostOptions &options = {}) {
        const int64_t blocks = faults::BlocksInUse();
        const int64_t bytes = faults::BytesInUse();
        session = {};
        session.actions = kAnswer;
        UseScriptedDialogs(&session);
        faults::RefuseTemporaryMemory(c.onDisk);
        TestRun run = RunScripted(document, {{kRadiusKey, typeFloat, 2}}, options,
                                  c.dialog ? plugInDialogDisplay : plugInDialogDontDisplay);
        faults::RefuseTemporaryMemory(false);
        ExpectNothingKeptButLineBuffers(c, faults::BlocksInUse() - blocks, faults::BytesInUse() - bytes);
        return run;
    }

    // Runs with each fault that `arm` sets, until one lies beyond the end of the run. If a run could not read
    // the radius from its script, it uses the remembered one, which is the same.
    void FailEachOnce(const RunCase &c, const std::function<void(int64_t)> &arm,
                      const std::function<bool()> &struck) {
        const TestDocument document = DocumentOf(c);
        const std::vector<uint8_t> right = Play(c, document).destination;
        EXPECT_EQ(session.done, c.dialog ? session.actions.size() : 0);
        int refused = 0;
        for (int64_t n = 1;; ++n) {
            SCOPED_TRACE(testing::Message() << c.name << ", fault " << n);
            ASSERT_LT(n, 5000);
            arm(n);
            const TestRun run = Play(c, document);
            const bool done = !struck();
            arm(0);
            if (run.result == noErr) {
                EXPECT_EQ(run.destination, right);
            } else {
                EXPECT_TRUE(IsAllowed(c, run.result)) << run.result;
                EXPECT_EQ(run.destination, document.source);
                ++refused;
            }
            if (done) {
                break;
            }
            // The next run removes what a failed deletion left behind.
            if (FileCount() > 0) {
                Play(c, document);
                EXPECT_EQ(FileCount(), 0u);
            }
        }
        EXPECT_GT(refused, 0);
    }

    // A dialog that cannot open counts as cancelled.
    bool IsAllowed(const RunCase &c, OSErr result) const {
        return std::find(std::begin(kAllowed), std::end(kAllowed), result) != std::end(kAllowed) ||
               (result == userCanceledErr && c.dialog && session.done == 0);
    }

  private:
    void ExpectNothingKeptButLineBuffers(const RunCase &c, int64_t blocks, int64_t bytes) {
        const int64_t lineBuffer = ((kWidth + 12) * 3 + 9) * c.depth / 8;
        EXPECT_LE(blocks, c.dialog ? kMostPreviews : 0);
        EXPECT_EQ(bytes, blocks * lineBuffer);
        blocksKept += blocks;
    }

    ScriptedSession session;
};

TEST_F(Faults, EveryAllocationFailsOnce) {
    for (const RunCase &c : kRuns) {
        FailEachOnce(c, faults::FailAllocation, faults::FaultStruck);
    }
}

TEST_F(Faults, EveryFileCallFailsOnce) {
    for (const RunCase &c : kRuns) {
        if (c.onDisk) {
            FailEachOnce(
                c, [](int64_t n) { faults::FailFileCall(n, ioErr); }, faults::FaultStruck);
        }
    }
}

// A run must not report success when an image could not be made, or was made too late for the first rows.
TEST_F(Faults, HostsThatIgnoreErrorsGetNothingUnfiltered) {
    for (const RunCase &c : kRuns) {
        const TestDocument document = DocumentOf(c);
        const std::vector<uint8_t> right = Play(c, document).destination;
        bool struck = true;
        for (int64_t n = 1; struck; ++n) {
            SCOPED_TRACE(testing::Message() << c.name << ", fault " << n);
            faults::FailAllocation(n);
            const TestRun run = Play(c, document, {.advanceState = false, .ignoreErrors = true});
            struck = faults::FaultStruck();
            faults::FailAllocation(0);
            const bool written = std::count(run.progress.begin(), run.progress.end(), kLastRowWritten) == 1;
            EXPECT_EQ(run.destination, written ? right : document.source);
            EXPECT_TRUE(written || run.result != noErr);
        }
    }
}

TEST_F(Faults, DiskIsFullAtEveryByte) {
    for (const RunCase &c : kRuns) {
        if (!c.onDisk) {
            continue;
        }
        const TestDocument document = DocumentOf(c);
        const std::vector<uint8_t> right = Play(c, document).destination;
        int refused = 0;
        // A run writes its images twice, cleared and filled, and the preferences last.
        for (int64_t space = 0; space < 12000; space += 17) {
            faults::SetDiskSpace(space);
            const TestRun run = Play(c, document);
            faults::SetDiskSpace(-1);
            EXPECT_TRUE(run.result == noErr || run.result == dskFulErr) << run.result;
            EXPECT_EQ(run.destination, run.result == noErr ? right : document.source) << space;
            EXPECT_EQ(FileCount(), 0u);
            refused += run.result != noErr;
        }
        EXPECT_GT(refused, 10);
    }
}

}  // namespace
