// The contents of the files that the program writes.
#include <cmath>
#include <random>
#include <unordered_set>

#include "host/picture/picture.h"
#include "median/plain/plain_filter.h"
#include "tests/host/program_fixture.h"

namespace {

TEST_F(Program, AnyNumberOfJobsGivesTheSameFile) {
    WriteNoise("rgb.tif", 900, 500, 3);
    WriteNoise("grey16.tif", 500, 900, 2, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_GREY16);
    WriteNoise("mask.png", 900, 500, 1, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W);
    const std::vector<std::string> cases[] = {
        {"rgb.tif", "-o", "out.tif", "-f", "-r", "2"},
        {"grey16.tif", "-o", "out.tif", "-f", "-r", "1.5"},
        {"grey16.tif", "-o", "out.tif", "-f"},
        {"rgb.tif", "-o", "out.tif", "-f", "-r", "1", "--mask", "mask.png", "--select", "3,5,890,490"},
    };
    for (const auto &arguments : cases) {
        std::set<std::string> results, preferences, summaries;
        for (const char *jobs : {"1", "2", "7"}) {
            std::vector<std::string> withJobs = arguments;
            withJobs.insert(withJobs.end(), {"--jobs", jobs});
            const Ended ended = Wait(Start(withJobs));
            ASSERT_EQ(ended.status, 0) << ended.err;
            results.insert(ContentsOf(folder / "out.tif"));
            preferences.insert(ContentsOf(output / "preferences/WEMBpref"));
            summaries.insert(ended.out.substr(0, ended.out.rfind(',')));
        }
        EXPECT_EQ(results.size(), 1u);
        EXPECT_EQ(preferences.size(), 1u);
        EXPECT_EQ(summaries.size(), 1u);
    }
}

// Long enough for more bands than are in memory at once. A comparison takes the whole picture there.
TEST_F(Program, StreamsGiveTheBytesOfWholePictures) {
    WriteNoise("in.tif", 1500, 6500, 4, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_RGB16);
    const std::vector<std::string> whole = {"in.tif", "-o", "whole.tif", "-r", "1", "--compare", "c.png"};
    ASSERT_EQ(Wait(Start(whole)).status, 0);
    for (const char *jobs : {"1", "2"}) {
        const Ended streamed = Wait(Start({"in.tif", "-o", "out.tif", "-f", "-r", "1", "-j", jobs}));
        EXPECT_EQ(streamed.status, 0) << streamed.err;
        EXPECT_TRUE(ContentsOf(folder / "out.tif") == ContentsOf(folder / "whole.tif")) << jobs;
    }
}

std::vector<uint8_t> PixelsOf(const std::string &file) {
    Picture picture;
    EXPECT_FALSE(OpenPicture(file, &picture));
    EXPECT_FALSE(ReadPixels(&picture, {}));
    const uint8_t *pixels = picture.document.source.get();
    return {pixels, pixels + PixelBytes(picture.document)};
}

// Pixels, with extra channels, as often filtered as there are passes; and as much of that as is wanted.
TEST_F(Program, PassesAndAmountsAreThoseOfRunsOneByOne) {
    WriteNoise("a.png", 90, 70, 4);
    WriteNoise("b.tif[compression=lzw]", 90, 70, 4, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_CMYK);
    WriteNoise("c.tif", 90, 70, 3, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_LABS);
    WriteNoise("d.jpg", 90, 70, 3);
    const std::pair<std::string, std::string> cases[] = {
        {"a.png", ".png"}, {"b.tif", ".tif"}, {"c.tif", ".tif"}, {"d.jpg", ".png"}};
    for (const auto &test : cases) {
        const std::string &input = test.first;
        const std::string &suffix = test.second;
        SCOPED_TRACE(input);
        const auto run = [&](const std::string &from, const std::string &to,
                             const std::vector<std::string> &options) {
            std::vector<std::string> command = {from, "-o", to + suffix, "-r", "2", "-f"};
            command.insert(command.end(), options.begin(), options.end());
            const Ended ended = Wait(Start(command));
            EXPECT_EQ(ended.status, 0) << ended.err;
            return ended.out;
        };
        run(input, "one", {});
        run("one" + suffix, "two", {});
        run("two" + suffix, "three", {});
        EXPECT_NE(run(input, "passes", {"--passes", "3"}).find("radius 2, 3 passes, "), std::string::npos);
        const std::vector<uint8_t> before = PixelsOf(Path(input));
        const std::vector<uint8_t> after = PixelsOf(Path("three" + suffix));
        EXPECT_EQ(PixelsOf(Path("passes" + suffix)), after);
        for (const uint32_t amount : {0U, 33U, 100U}) {
            run(input, "mixed", {"--passes", "3", "--amount", std::to_string(amount)});
            const std::vector<uint8_t> mixed = PixelsOf(Path("mixed" + suffix));
            const size_t step = suffix == ".tif" ? 2 : 1;
            ASSERT_EQ(mixed.size(), before.size());
            for (size_t i = 0; i < mixed.size(); i += step) {
                const auto at = [&](const std::vector<uint8_t> &from) {
                    return step == 1 ? double{1} * from[i] : from[i] + 256.0 * from[i + 1];
                };
                ASSERT_LE(std::abs(at(mixed) - (amount * at(after) + (100 - amount) * at(before)) / 100), 0.5)
                    << i << ' ' << amount;
            }
        }
    }
    ExpectRefusals({{"a.png -o new.png --passes 0", 2, "passes can be"},
                    {"a.png -o new.png --amount 101", 2, "amount can be"},
                    {"a.png -o new.png --amount 50 --compare new.png", 2, "--compare"}});
}

// Floats of any size, of which some are not finite.
TEST_F(Program, FloatsAreFilteredAndStayFloatsOfThePicture) {
    constexpr int kWidth = 600;
    constexpr int kHeight = 500;
    std::vector<float> samples(kWidth * kHeight);
    std::mt19937 generator(5);
    std::generate(samples.begin(), samples.end(), [&] {
        const auto bits = static_cast<uint32_t>(generator());
        return bits % 50 == 0 ? NAN : static_cast<float>(bits % 100'000) - 7e6F;
    });
    std::unordered_set<float> originals;
    std::copy_if(samples.begin(), samples.end(), std::inserter(originals, originals.end()),
                 [](float sample) { return !std::isnan(sample); });
    const OwnedObject<VipsImage> image(vips_image_new_from_memory(
        samples.data(), samples.size() * sizeof(float), kWidth, kHeight, 1, VIPS_FORMAT_FLOAT));
    ASSERT_EQ(vips_tiffsave(image.get(), Path("in.tif").c_str(), nullptr), 0);
    std::set<std::string> results;
    for (const char *jobs : {"1", "2"}) {
        for (const char *range : {"-7e6,-6900000", "-6960000,-6950000", ""}) {
            std::vector<std::string> arguments = {"in.tif", "-o", "out.tif", "-f", "-r", "2", "--jobs", jobs};
            if (*range != '\0') {
                arguments.push_back(std::string("--range=") + range);
            }
            const Ended ended = Wait(Start(arguments));
            ASSERT_EQ(ended.status, 0) << ended.err;
            const std::vector<uint8_t> pixels = PixelsOf(Path("out.tif"));
            const auto *after = reinterpret_cast<const float *>(pixels.data());
            int changed = 0;
            for (size_t i = 0; i < samples.size(); ++i) {
                changed += !std::isnan(samples[i]) && after[i] != samples[i];
                ASSERT_EQ(std::isnan(after[i]), std::isnan(samples[i])) << i;
                ASSERT_TRUE(std::isnan(after[i]) || originals.contains(after[i])) << after[i];
            }
            EXPECT_GT(changed, kWidth * kHeight / 20) << range;
            results.insert(ContentsOf(folder / "out.tif"));
        }
    }
    EXPECT_EQ(results.size(), 3U) << "one for each range; the picture's own ends before 100000";
}

// Radii that an action cannot hold go through the filter's own dialog.
TEST_F(Program, EveryRadiusGivesWhatItsDefinitionGives) {
    constexpr int32_t kWidth = 400;
    constexpr int32_t kHeight = 30;
    WriteNoise("in.png", kWidth, kHeight, 3);
    const std::vector<uint8_t> noise = PixelsOf(Path("in.png"));
    for (int32_t radius = 1; radius <= 6; ++radius) {
        std::vector<uint8_t> defined(noise.size());
        FilterPlainly({PixelFormat::rgb8, kWidth, kHeight, noise.data()}, radius, defined.data());
        const std::string digit = std::to_string(radius);
        const std::string fraction = radius < 6 ? ".9" : "";
        const Ended asked = Wait(Start({"in.png", "-o", "out.png", "-f", "-r", digit + fraction}));
        EXPECT_EQ(asked.status, 0) << asked.err;
        EXPECT_NE(asked.out.find("radius " + digit + ","), std::string::npos) << asked.out;
        EXPECT_EQ(PixelsOf(Path("out.png")), defined) << radius;
        const Ended remembered = Wait(Start({"in.png", "-o", "out.png", "-f"}));
        EXPECT_NE(remembered.out.find("radius " + digit + ","), std::string::npos) << remembered.out;
        EXPECT_EQ(PixelsOf(Path("out.png")), defined) << radius;
    }
}

TEST_F(Program, SelectionsAndMasksKeepTheRest) {
    WriteNoise("in.tif", 60, 40, 4, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_RGB16);
    WriteNoise("white.png", 60, 40, 1, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W);
    const OwnedObject<VipsImage> black(vips_image_new_from_file(Path("white.png").c_str(), nullptr));
    VipsImage *masks[2];
    const double zero = 0;
    const double levels[] = {0, 65535};
    for (const int i : {0, 1}) {
        VipsImage *wide = nullptr;
        vips_linear(black.get(), &wide, &zero, &levels[i], 1, nullptr);
        const OwnedObject<VipsImage> owned(wide);
        vips_cast_ushort(wide, &masks[i], nullptr);
        masks[i]->Type = VIPS_INTERPRETATION_GREY16;
        vips_image_write_to_file(masks[i], Path(i == 0 ? "black16.png" : "white16.png").c_str(), nullptr);
        g_object_unref(masks[i]);
    }
    const auto result = [&](std::vector<std::string> options) {
        options.insert(options.begin(), {"in.tif", "-o", "out.tif", "-f", "-r", "2"});
        EXPECT_EQ(Wait(Start(options)).status, 0);
        return ContentsOf(folder / "out.tif");
    };
    const std::string in = ContentsOf(folder / "in.tif").substr(8, 60 * 40 * 8);
    const std::string whole = result({}).substr(8, 60 * 40 * 8);
    EXPECT_EQ(result({"--mask", "white16.png"}).substr(8, 60 * 40 * 8), whole);
    EXPECT_EQ(result({"--mask", "black16.png"}).substr(8, 60 * 40 * 8), in);
    const std::string selected = result({"--select", "10,20,30,5"}).substr(8, 60 * 40 * 8);
    EXPECT_NE(selected, in);
    for (size_t i = 0; i < in.size(); ++i) {
        const size_t x = i / 8 % 60;
        const size_t y = i / 8 / 60;
        if (x < 10 || x >= 40 || y < 20 || y >= 25) {
            ASSERT_EQ(selected[i], in[i]) << x << ' ' << y;
        }
    }
}

TEST_F(Program, RecordsAndPlays) {
    WriteNoise("in.png", 40, 30, 3);
    EXPECT_EQ(
        Wait(Start({"in.png", "-o", "a.png", "-r", "2.5", "--record", "r.json", "--compare", "both.png"}))
            .status,
        0);
    EXPECT_EQ(Wait(Start({"in.png", "-o", "b.png", "-r", "1"})).status, 0);
    const Ended played = Wait(Start({"in.png", "-o", "c.png", "--play", "r.json"}));
    EXPECT_NE(played.out.find("radius 2,"), std::string::npos) << played.out;
    EXPECT_EQ(ContentsOf(folder / "a.png"), ContentsOf(folder / "c.png"));
    EXPECT_NE(ContentsOf(folder / "a.png"), ContentsOf(folder / "b.png"));
    const OwnedObject<VipsImage> both(vips_image_new_from_file(Path("both.png").c_str(), nullptr));
    ASSERT_NE(both, nullptr);
    EXPECT_EQ(vips_image_get_width(both.get()), 2 * 40 + 8);
    EXPECT_EQ(vips_image_get_height(both.get()), 30);

    WriteBytes("half.json", R"({"event": "HyMd", "parameters": {"nRad": {"type": "float", "value": 2.5}}})");
    const Ended half = Wait(Start({"in.png", "-o", "half.png", "--play", "half.json"}));
    EXPECT_NE(half.out.find("radius 2,"), std::string::npos) << half.out;
    EXPECT_EQ(ContentsOf(folder / "half.png"), ContentsOf(folder / "a.png"));
    // A radius that an action cannot hold is known only after the filter has run.
    EXPECT_EQ(Wait(Start({"in.png", "-o", "five.png", "-r", "5"})).status, 0);
    const std::set<std::string> before = Names();
    const Ended remembered = Wait(Start({"in.png", "-o", "new.png", "--record", "new.json"}));
    EXPECT_EQ(remembered.status, 1);
    EXPECT_EQ(remembered.err,
              "hymedian: new.json: nothing was written: the parameter \"nRad\" is a radius of 5, and "
              "--play takes those from 0 to 4.\n");
    EXPECT_EQ(Names(), before);
}

}  // namespace
