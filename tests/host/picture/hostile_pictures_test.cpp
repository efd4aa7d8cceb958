// Files that are not valid pictures, or claim to be absurdly large.
#include <algorithm>
#include <random>

#include "host/picture/picture.h"
#include "tests/host/program_fixture.h"
#include "tests/support/test_images.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

class HostilePictures : public Program {
  protected:
    std::string NoiseIn(const char *name) {
        WriteNoise(name, 24, 18, 3);
        return ContentsOf(folder / name);
    }
};

std::string BigEndian(uint32_t number, int bytes) {
    std::string text;
    while (bytes-- > 0) {
        text += static_cast<char>(number >> 8 * bytes);
    }
    return text;
}

// A valid header is believed until the pixels are read. Its checksum covers everything from its name on.
std::string PngOf(std::string png, uint32_t side) {
    png.replace(16, 8, BigEndian(side, 4) + BigEndian(side, 4));
    return png.replace(29, 4, BigEndian(Crc32({png.begin() + 12, png.begin() + 29}), 4));
}

std::string JpegOf(std::string jpeg, uint32_t side) {
    return jpeg.replace(jpeg.find("\xFF\xC0"s) + 5, 4, BigEndian(side, 2) + BigEndian(side, 2));
}

// Width and height are entries of the directory: tag, type, count and value, little-endian.
std::string TiffOf(std::string tiff, uint32_t side) {
    std::string value = BigEndian(side, 4);
    std::reverse(value.begin(), value.end());
    size_t entry = 2;
    for (size_t i = 4; i-- > 0;) {
        entry += static_cast<size_t>(static_cast<uint8_t>(tiff[4 + i])) << 8 * i;
    }
    for (; entry + 12 <= tiff.size(); entry += 12) {
        if (tiff[entry + 1] == 1 && (tiff[entry] == 0 || tiff[entry] == 1)) {
            tiff.replace(entry, 12, tiff.substr(entry, 2) + "\4\0\1\0\0\0"s + value);
        }
    }
    return tiff;
}

TEST_F(HostilePictures, EndInOneSentenceAndTakeNoMemory) {
    const std::string png = NoiseIn("a.png");
    const std::string jpeg = NoiseIn("a.jpg");
    const std::string tiff = NoiseIn("a.tif");
    const std::string webp = NoiseIn("a.webp");
    const std::string noise = png.substr(60) + jpeg.substr(60);
    WriteNoise("frames.webp[page-height=9]", 24, 18, 3);
    const std::string frames = ContentsOf(folder / "frames.webp");
    const char *const tooLarge = "--max-megapixels";
    const struct {
        const char *name;
        std::string bytes;
        const char *limit;
        const char *reason;
    } cases[] = {
        {"bomb.png", PngOf(png, 65535), "1000", tooLarge},
        {"long.png", PngOf(png, 10'000'000), "1000", tooLarge},
        {"bomb.jpg", JpegOf(jpeg, 65500), "1000", tooLarge},
        {"bomb.tif", TiffOf(tiff, 65535), "1000", tooLarge},
        // Allowed, but needs more memory than any machine has; and larger than any picture can be.
        {"bomb.tif", TiffOf(tiff, 9'000'000), "100000000", "memory"},
        {"bomb.tif", TiffOf(tiff, UINT32_MAX), "100000000", ""},
        {"bomb.png", PngOf(png, INT32_MAX), "100000000", ""},
        {"zero.png", PngOf(png, 0), "1", ""},
        {"zero.jpg", JpegOf(jpeg, 0), "1", ""},
        {"zero.tif", TiffOf(tiff, 0), "1", ""},
        {"cut.png", png.substr(0, png.size() / 2), "1", ""},
        {"cut.jpg", jpeg.substr(0, jpeg.size() / 2), "1", ""},
        {"cut.tif", tiff.substr(0, tiff.size() / 2), "1", ""},
        {"cut.webp", webp.substr(0, webp.size() / 2), "1", ""},
        {"noise.png", png.substr(0, 8) + noise, "1", ""},
        {"noise.jpg", jpeg.substr(0, 4) + noise, "1", ""},
        {"noise.tif", tiff.substr(0, 4) + noise, "1", ""},
        {"noise.webp", webp.substr(0, 16) + noise, "1", ""},
        {"frames.webp", frames, "1", "several pages"},
    };
    for (const auto &test : cases) {
        WriteBytes(test.name, test.bytes);
        const std::set<std::string> before = Names();
        const Ended ended = Wait(Start({test.name, "-o", "new.tif", "--max-megapixels", test.limit}));
        SCOPED_TRACE(test.name + ": "s + ended.err);
        EXPECT_EQ(ended.status, 1);
        ExpectOneSentence(ended, test.name + ": "s);
        EXPECT_NE(ended.err.find(test.reason), std::string::npos);
        EXPECT_EQ(Names(), before);
        EXPECT_LT(ended.megabytes, 256);
    }
}

TEST_F(HostilePictures, LimitDecides) {
    WriteNoise("in.png", 1001, 1000, 1);
    EXPECT_EQ(Wait(Start({"in.png", "-o", "out.png", "--max-megapixels", "1"})).err,
              "hymedian: in.png: its 1001 x 1000 pixels are more than the 1 megapixels that "
              "--max-megapixels allows.\n");
    EXPECT_EQ(Wait(Start({"in.png", "-o", "out.png", "--max-megapixels", "2"})).status, 0);
    EXPECT_EQ(Wait(Start({"in.png", "-o", "out.png", "-f", "--max-megapixels", "0"})).status, 2);
}

// Each of hundreds of damaged files yields a whole picture or an error message.
TEST_F(HostilePictures, AnyDamageIsSurvived) {
    std::mt19937 random(11);
    const auto below = [&](size_t count) {
        return std::uniform_int_distribution<size_t>(0, count - 1)(random);
    };
    std::vector<std::string> arguments;
    for (const char *name : {"a.png", "a.jpg", "a.tif", "a.webp", "a.heic"}) {
        if (name == "a.heic"s && !HasHeif()) {
            continue;
        }
        const std::string whole = NoiseIn(name);
        for (int i = 0; i < 100; ++i) {
            std::string damaged = whole;
            for (size_t flips = below(4) + 1; flips > 0; --flips) {
                // The first bytes matter most.
                damaged[below(below(2) == 0 ? std::min<size_t>(damaged.size(), 64) : damaged.size())] ^=
                    static_cast<char>(1 << below(8));
            }
            damaged.resize(below(4) == 0 ? below(damaged.size()) : damaged.size());
            arguments.push_back(std::to_string(i) + name);
            WriteBytes(arguments.back(), damaged);
        }
    }
    const std::vector<std::string> inputs = arguments;
    fs::create_directory(folder / "out");
    arguments.insert(arguments.end(), {"-o", "out", "-q", "-r", "1", "-j", "2", "--max-megapixels", "1"});
    const Ended ended = Wait(Start(arguments));
    EXPECT_EQ(ended.status, 1);
    std::set<std::string> done = Names("out");
    size_t failed = 0;
    for (const std::string &input : inputs) {
        const bool told = ("\n" + ended.err).find("\nhymedian: " + input + ": ") != std::string::npos;
        EXPECT_NE(told, done.erase(input) == 1) << input;
        failed += told ? 1 : 0;
        Picture picture;
        EXPECT_TRUE(told ||
                    (!OpenPicture((folder / "out" / input).string(), &picture) && !ReadPixels(&picture, {})))
            << input;
    }
    EXPECT_TRUE(done.empty()) << *done.begin();
    EXPECT_EQ(std::count(ended.err.begin(), ended.err.end(), '\n'), static_cast<std::ptrdiff_t>(failed));
    // Some damage is detected, and some is not.
    EXPECT_GT(failed, 100u);
    EXPECT_LT(failed, 490u);
}

}  // namespace
