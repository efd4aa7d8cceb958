#include "tests/support/hostile_host.h"

#include "tests/support/scratch_folder.h"
#include "tests/support/test_images.h"

namespace {

constexpr uint32_t kSequencesEach = 200;

class HostileHost : public ScratchFolder, public testing::WithParamInterface<uint32_t> {};

TEST_P(HostileHost, DoesNoHarm) {
    // Room for small images; larger ones go to disk, which has little space.
    const int64_t before = faults::BytesInUse();
    const uint32_t first = GetParam() * kSequencesEach;
    for (uint32_t sequence = first; sequence < first + kSequencesEach; ++sequence) {
        faults::SetMemoryLimit(before + (2 << 20));
        faults::SetDiskSpace(1 << 18);
        const std::vector<uint8_t> decisions = RandomBytes(20 + sequence % 200, sequence);
        PlayHostileHost(decisions.data(), decisions.size());
        faults::SetMemoryLimit(-1);
        ASSERT_EQ(faults::BytesInUse(), before) << "sequence " << sequence;
    }
    EXPECT_EQ(FileCount(), 0u);
}

INSTANTIATE_TEST_SUITE_P(TwentyThousandSequences, HostileHost, testing::Range(0u, 100u));

}  // namespace
