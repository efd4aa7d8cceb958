#include "tests/support/hostile_host.h"

#include "tests/support/scratch_folder.h"
#include "tests/support/test_images.h"

namespace {

class HostileHost : public ScratchFolder {};

TEST_F(HostileHost, TwentyThousandSequencesDoNoHarm) {
    // Room for small images; larger ones go to disk, which has little space.
    const int64_t before = faults::BytesInUse();
    for (uint32_t sequence = 0; sequence < 20000; ++sequence) {
        faults::SetMemoryLimit(before + (2 << 20));
        faults::SetDiskSpace(1 << 18);
        const std::vector<uint8_t> decisions = RandomBytes(20 + sequence % 200, sequence);
        PlayHostileHost(decisions.data(), decisions.size());
        faults::SetMemoryLimit(-1);
        ASSERT_EQ(faults::BytesInUse(), before) << "sequence " << sequence;
    }
    EXPECT_EQ(FileCount(), 0u);
}

}  // namespace
