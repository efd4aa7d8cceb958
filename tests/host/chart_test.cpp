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

// What the guide to the radius promises.
TEST_F(Chart, LinesStayInFourDirectionsAndStrokesWiderThanTheRadius) {
    const struct {
        std::vector<std::string> drawing;
        const char *radius;
        int leastKept, mostKept;  // in percent
    } cases[] = {
        {{"lines", "1", "0", "1"}, "6", 100, 100},
        {{"lines", "0", "1", "1"}, "6", 100, 100},
        {{"lines", "1", "1", "1"}, "6", 100, 100},
        {{"lines", "1", "-1", "1"}, "6", 100, 100},
        {{"lines", "4", "-1", "1"}, "1", 1, 99},
        {{"lines", "4", "-1", "2"}, "1", 100, 100},
        {{"lines", "4", "-1", "2"}, "3", 1, 99},
        {{"page", "2"}, "1", 100, 100},
        {{"page", "2"}, "2", 1, 99},
        {{"page", "4"}, "3", 100, 100},
    };
    for (const auto &test : cases) {
        std::vector<std::string> drawing = test.drawing;
        drawing.emplace_back("clean.png");
        ASSERT_EQ(Run("chart", drawing).status, 0);
        ASSERT_EQ(Run("hymedian", {"clean.png", "-o", "out.png", "-f", "-r", test.radius}).status, 0);
        const int kept = std::stoi(Run("chart", {"kept", "clean.png", "out.png"}).out);
        EXPECT_GE(kept, test.leastKept) << &test - cases;
        EXPECT_LE(kept, test.mostKept) << &test - cases;
    }
}

TEST_F(Chart, SpecksGoAtTheirRadius) {
    ASSERT_EQ(Run("chart", {"leaves", "clean.png"}).status, 0);
    const struct {
        const char *kind, *amount, *radius;
        double least, most;  // gain in decibels
    } cases[] = {
        {"impulses", "5", "1", 15, 20}, {"impulses", "20", "2", 14, 18}, {"blobs", "600", "2", -1, 0},
        {"blobs", "600", "3", 8, 10},   {"gaussian", "25", "3", 2, 4},   {"scratches", "20", "6", -1, 0},
    };
    for (const auto &[kind, amount, radius, least, most] : cases) {
        ASSERT_EQ(Run("chart", {"damage", kind, amount, "clean.png", "noisy.png"}).status, 0);
        ASSERT_EQ(Run("hymedian", {"noisy.png", "-o", "out.png", "-f", "-r", radius}).status, 0);
        const double gain = Psnr("clean.png", "out.png") - Psnr("clean.png", "noisy.png");
        EXPECT_GE(gain, least) << kind << amount;
        EXPECT_LE(gain, most) << kind << amount;
    }
}

}  // namespace
