// Whole runs in which every allocation and every file call fails once, one after the other.
#include <algorithm>
#include <functional>
#include <iterator>

#include "photoshop/image_modes.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/script_host.h"
#include "tests/support/test_host.h"
#include "tests/support/test_images.h"

namespace {

struct RunCase {
    const char *name;
    int16_t mode;
    int32_t depth;
    int16_t planes;
    bool mask;
    bool onDisk;
};

constexpr RunCase kRuns[] = {
    {"RGB in memory", plugInModeRGBColor, 8, 3, false, false},
    {"RGB on disk", plugInModeRGBColor, 8, 3, false, true},
    {"Lab 48 with alpha and mask in memory", plugInModeLab48, 16, 4, true, false},
    {"Lab 48 with alpha and mask on disk", plugInModeLab48, 16, 4, true, true},
};

// What the system may answer: memory, disk, and what the File Manager says.
constexpr OSErr kAllowed[] = {memFullErr, dskFulErr, ioErr, eofErr, fnfErr, dupFNErr, nsvErr};

TestDocument DocumentOf(const RunCase &c) {
    constexpr int kWidth = 7;
    constexpr int kHeight = 5;
    TestDocument document = {c.mode, c.depth, c.planes, {2, 3, 2 + kHeight, 3 + kWidth}, {}, {}};
    document.source = RandomBytes(static_cast<size_t>(kWidth * kHeight * c.planes * c.depth / 8), 21);
    if (c.mask) {
        document.mask.assign(kWidth * kHeight, 255);
        document.mask[9] = 3;
    }
    return document;
}

class Faults : public ScratchFolder {
  protected:
    TestRun Play(const RunCase &c, const TestDocument &document) {
        PIDescriptorParameters parameters =
            script::Parameters({{FourCharCode("nRad"), typeFloat, 2}}, plugInDialogDontDisplay);
        faults::RefuseTemporaryMemory(c.onDisk);
        TestRun run = RunPlugin(document, {true, -1, &parameters});
        faults::RefuseTemporaryMemory(false);
        DisposeHandle(parameters.descriptor);
        return run;
    }

    // Runs with each fault that `arm` sets, until one lies behind the run's end. The radius that a run could
    // not read from its script is the one remembered, which is the script's.
    void FailEachOnce(const RunCase &c, const std::function<void(int64_t)> &arm,
                      const std::function<bool()> &struck) {
        const TestDocument document = DocumentOf(c);
        const std::vector<uint8_t> right = Play(c, document).destination;
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
                EXPECT_NE(std::find(std::begin(kAllowed), std::end(kAllowed), run.result), std::end(kAllowed))
                    << run.result;
                EXPECT_EQ(run.destination, document.source);
                ++refused;
            }
            if (done) {
                break;
            }
            // What a deletion that failed has left goes with the next run.
            Play(c, document);
            EXPECT_EQ(FileCount(), 0u);
        }
        EXPECT_GT(refused, 0);
    }
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
