// The test chart, which measures what the filter achieves.
#include "tests/host/program_fixture.h"

namespace {

class Chart : public Program {
  protected:
    Ended Run(const char *name, const std::vector<std::string> &arguments) {
        executable = std::filesystem::path(HYMEDIAN_PROGRAM).replace_filename(name);
        return Wait(Start(arguments));
    }

    // In decibels.
    double Psnr(const char *clean, const char *other) {
        const Ended ended = Run("chart", {"psnr", clean, other});
        EXPECT_EQ(ended.status, 0) << ended.err;
        return std::stod(ended.out);
    }
};

TEST_F(Chart, GetsCleaner) {
    ASSERT_EQ(Run("chart", {"draw", "clean.png", "noisy.png"}).status, 0);
    ASSERT_EQ(Run("hymedian", {"noisy.png", "-o", "filtered.png", "-r", "2"}).status, 0);
    EXPECT_GT(Psnr("clean.png", "filtered.png"), Psnr("clean.png", "noisy.png") + 2);
    // Two tiles side by side are as noisy as one.
    const double noise = Psnr("clean.png", "noisy.png");
    for (const char *name : {"clean.png", "noisy.png"}) {
        ASSERT_EQ(Run("chart", {"tile", name, "1280", "480", std::string("wide-") + name}).status, 0);
    }
    EXPECT_EQ(Psnr("wide-clean.png", "wide-noisy.png"), noise);
    EXPECT_EQ(Run("chart", {"psnr", "clean.png", "wide-clean.png"}).status, 1);
    EXPECT_EQ(Run("chart", {"psnr", "clean.png", "missing.png"}).status, 1);
    EXPECT_EQ(Run("chart", {"tile", "clean.png", "0", "480", "none.png"}).status, 2);
    EXPECT_EQ(Run("chart", {"draw", "clean.png"}).status, 2);
}

}  // namespace
