// Reading and writing picture files: samples, and what a format cannot hold.
#include "host/picture/picture.h"
#include "host/picture/file_probe.h"

#include "host/picture/picture_format.h"
#include "host/picture/picture_mode.h"
#include "host/picture/picture_writer.h"
#include "platform/native_paths.h"
#include "tests/host/host_fixture.h"

namespace {

class PictureFile : public HostTest {
  protected:
    // Writes the picture; returns the error message, empty for success.
    std::string Write(const Picture &picture, const std::string &name) {
        const PictureFormat *format = nullptr;
        MaybeFailure failure = FindFormat(name, kFormatOfName, &format);
        if (!failure) {
            failure = CheckFormatHolds(*format, picture.document, "in", name);
        }
        if (!failure) {
            failure = WritePicture(picture, *format, {}, Path(name), name, [&](int32_t row) {
                return picture.document.destination.get() + row * RowBytes(picture.document);
            });
        }
        return failure ? failure->sentence : "";
    }

    std::string Read(const std::string &name, Picture *picture) {
        MaybeFailure failure = OpenPicture(Path(name), picture);
        if (!failure) {
            failure = ReadPixels(picture, {});
        }
        return failure ? failure->sentence : "";
    }

    static Picture MakePicture(int16_t mode, int32_t planes) {
        const DocumentMode &known = ModeOf(mode);
        Picture picture;
        picture.document = RandomDocument(mode, known.depth, known.colorPlanes, planes, 30, 70);
        picture.extraSamples.assign(static_cast<size_t>(planes - known.colorPlanes), kUnassociatedAlpha);
        VipsImage *metadata = vips_image_new();
        // Left from the input's encoding; it must not affect the output's.
        vips_image_set_int(metadata, "palette-bit-depth", 1);
        picture.metadata.reset(metadata);
        return picture;
    }
};

TEST_F(PictureFile, SamplesComeBackAsTheyWere) {
    const struct {
        int16_t mode;
        int32_t planes;
        const char *file;
    } cases[] = {
        {plugInModeGrayScale, 1, "a.png"}, {plugInModeGrayScale, 2, "a.PNG"},
        {plugInModeGray16, 2, "b.png"},    {plugInModeRGBColor, 3, "c.png"},
        {plugInModeRGB48, 4, "d.png"},     {plugInModeRGBColor, 3, "a.webp"},
        {plugInModeGrayScale, 1, "a.tif"}, {plugInModeGray16, 3, "b.tiff"},
        {plugInModeGray32, 1, "c.tif"},    {plugInModeRGBColor, 5, "d.tif"},
        {plugInModeRGB48, 4, "e.tif"},     {plugInModeRGB96, 3, "f.tif"},
        {plugInModeRGB96, 4, "g.tif"},     {plugInModeLabColor, 3, "h.tif"},
        {plugInModeLabColor, 5, "i.tif"},  {plugInModeCMYKColor, 6, "j.tif"},
        {plugInModeCMYK64, 5, "k.tif"},    {plugInModeGrayScale, 1, "a.pgm"},
        {plugInModeRGB48, 3, "a.ppm"},     {plugInModeRGBColor, 4, "a.pam"},
        {plugInModeGray16, 2, "b.pam"},
    };
    for (const auto &test : cases) {
        SCOPED_TRACE(test.file);
        const Picture written = MakePicture(test.mode, test.planes);
        ASSERT_EQ(Write(written, test.file), "");
        Picture read;
        ASSERT_EQ(Read(test.file, &read), "");
        EXPECT_EQ(read.document.imageMode, test.mode);
        std::string place;
        ASSERT_TRUE(read.document.file.has_value());
        EXPECT_EQ(NativePathFromSpec(*read.document.file, &place), noErr);
        EXPECT_EQ(place, Path(test.file));
        ASSERT_EQ(read.document.planes, test.planes);
        const std::vector<uint8_t> expected = BytesOf(written.document, written.document.destination);
        EXPECT_EQ(BytesOf(read.document, read.document.source), expected);
        EXPECT_EQ(BytesOf(read.document, read.document.destination), expected);
    }
}

TEST_F(PictureFile, HeadersOfNetpbmNameTheKind) {
    const struct {
        int16_t mode;
        int32_t planes;
        const char *file, *named;
    } cases[] = {
        {plugInModeGrayScale, 1, "a.pam", "TUPLTYPE GRAYSCALE\n"},
        {plugInModeGray16, 2, "b.pam", "TUPLTYPE GRAYSCALE_ALPHA\n"},
        {plugInModeRGB48, 3, "c.pam", "MAXVAL 65535\nTUPLTYPE RGB\n"},
        {plugInModeRGBColor, 4, "d.pam", "MAXVAL 255\nTUPLTYPE RGB_ALPHA\n"},
        {plugInModeGray16, 1, "a.pgm", "P5\n30 70\n65535\n"},
        {plugInModeRGBColor, 3, "a.ppm", "P6\n30 70\n255\n"},
    };
    for (const auto &test : cases) {
        ASSERT_EQ(Write(MakePicture(test.mode, test.planes), test.file), "");
        EXPECT_NE(ContentsOf(folder / test.file).find(test.named), std::string::npos) << test.named;
    }
}

// Some writers call all samples of Lab signed.
TEST_F(PictureFile, LabIsReadBitForBitWhateverItsSamplesAreCalled) {
    constexpr int16_t kSamples[] = {0, 0, 0, 32767, 32767, -32768, 12345, -1, 1};
    OwnedObject<VipsImage> image(
        vips_image_new_from_memory(kSamples, sizeof kSamples, 3, 1, 3, VIPS_FORMAT_SHORT));
    image->Type = VIPS_INTERPRETATION_LABS;
    ASSERT_EQ(vips_tiffsave(image.get(), Path("a.tif").c_str(), nullptr), 0);
    Picture read;
    ASSERT_EQ(Read("a.tif", &read), "");
    const auto *samples = reinterpret_cast<const uint16_t *>(read.document.source.get());
    for (size_t i = 0; i < std::size(kSamples); ++i) {
        const auto bits = static_cast<uint16_t>(kSamples[i]);
        EXPECT_EQ(samples[i], i % 3 == 0 ? bits << 1 : bits ^ 0x8000) << i;
    }
}

TEST_F(PictureFile, ChannelsAreOfTheKindThatTheirFileSays) {
    Picture picture = MakePicture(plugInModeRGB48, 4);
    auto *samples = reinterpret_cast<uint16_t *>(picture.document.destination.get());
    const uint16_t halfOpaque[] = {1000, 2000, 3000, 32768};
    std::copy_n(halfOpaque, 4, samples);
    const struct {
        uint16_t kind;
        int32_t transparency;
        const char *trouble;  // of a PNG
        uint16_t red;         // in the PNG
    } cases[] = {{kUnspecifiedExtra, 0, "channel that is not transparency", 0},
                 {kAssociatedAlpha, 3, "", 2000},
                 {kUnassociatedAlpha, 3, "", 1000}};
    for (const auto &test : cases) {
        SCOPED_TRACE(test.kind);
        picture.extraSamples = {test.kind};
        ASSERT_EQ(Write(picture, "a.tif"), "");
        Picture read;
        ASSERT_EQ(Read("a.tif", &read), "");
        EXPECT_EQ(read.document.transparency, test.transparency);
        EXPECT_EQ(read.extraSamples, picture.extraSamples);
        EXPECT_EQ(BytesOf(read.document, read.document.source),
                  BytesOf(picture.document, picture.document.destination));
        const std::string sentence = Write(read, "a.png");
        ASSERT_EQ(sentence.empty(), test.red != 0) << sentence;
        EXPECT_NE(sentence.find(test.trouble), std::string::npos) << sentence;
        if (sentence.empty()) {
            Picture png;
            ASSERT_EQ(Read("a.png", &png), "");
            EXPECT_EQ(*reinterpret_cast<uint16_t *>(png.document.source.get()), test.red);
        }
    }
}

TEST_F(PictureFile, NothingIsCutToFitAFormat) {
    const struct {
        int16_t mode;
        int32_t planes;
        const char *file;
        const char *choice;  // the alternative that the message suggests
    } cases[] = {
        {plugInModeRGB48, 3, "a.jpg", "choose .png or .tif or .ppm or .pam."},
        {plugInModeRGBColor, 4, "a.jpeg", "choose .png or .tif or .webp or .pam."},
        {plugInModeRGB48, 4, "a.ppm", "choose .png or .tif or .pam."},
        {plugInModeRGB96, 3, "a.png", "choose .tif."},
        {plugInModeRGBColor, 5, "a.png", "choose .tif."},
        {plugInModeLabColor, 3, "a.webp", "choose .tif."},
        {plugInModeCMYKColor, 4, "a.png", "choose .jpg or .tif."},
    };
    for (const auto &test : cases) {
        const std::string sentence = Write(MakePicture(test.mode, test.planes), test.file);
        EXPECT_NE(sentence.find(test.choice), std::string::npos) << sentence;
        EXPECT_EQ(sentence.find("in: "), 0U) << sentence;
    }
    EXPECT_EQ(FileCount(), 0U);
}

TEST_F(PictureFile, KindsOfChannelsThatDoNotGoInAreAFailure) {
    Picture picture = MakePicture(plugInModeRGBColor, 4);
    EXPECT_EQ(Write(picture, "a.tif"), "");
    picture.extraSamples.push_back(kUnspecifiedExtra);
    EXPECT_NE(Write(picture, "b.tif").find("kinds of its channels"), std::string::npos);
}

TEST_F(PictureFile, CancelStopsReadingAndMissingRowsStopWriting) {
    const Picture written = MakePicture(plugInModeRGBColor, 3);
    ASSERT_EQ(Write(written, "a.png"), "");
    Watcher cancelling;
    cancelling.cancelled = [] { return true; };
    Picture read;
    ASSERT_FALSE(OpenPicture(Path("a.png"), &read));
    EXPECT_EQ(ReadPixels(&read, cancelling)->status, kExitInterrupted);
    const PictureFormat *format = nullptr;
    FindFormat("a.png", kFormatOfName, &format);
    EXPECT_TRUE(WritePicture(written, *format, {}, Path("b.png"), "b.png",
                             [](int32_t) -> const uint8_t * { return nullptr; }));
}

TEST_F(PictureFile, DepthOfTiffIsReadInEveryLayout) {
    using namespace std::string_literals;
    const std::string before = "\x01\x00\x03\x00\x01\x00\x00\x00\x09\x00\x00\x00"s;  // an unrelated entry
    const std::string big = "II\x2B\0\x08\0\0\0\x10\0\0\0\0\0\0\0\x01\0\0\0\0\0\0\0"s;
    const std::string sound = "II*\0\x08\0\0\0\x02\0"s + before + "\x02\x01\x03\0\x02\0\0\0\x08\0\x08\0"s;
    const struct {
        std::string bytes;
        int32_t depth;
    } cases[] = {
        {sound, 8},
        {"MM\0*\0\0\0\x08\0\x01\x01\x02\0\x03\0\0\0\x01\0\x10\0\0"s, 16},
        // Three values are stored elsewhere.
        {"II*\0\x08\0\0\0\x01\0\x02\x01\x03\0\x03\0\0\0\x16\0\0\0\x0C\0\x0C\0\x0C\0"s, 12},
        {big + "\x02\x01\x03\0\x04\0\0\0\0\0\0\0\x10\0\x10\0\x10\0\x10\0"s, 16},
        {sound.substr(0, sound.size() - 4), 0},
        {"II*\0\xFF\xFF\xFF\xFF"s, 0},
        {"\x89PNG\r\n\x1A\n"s, 0},
        {"", 0},
    };
    for (const auto &test : cases) {
        WriteBytes("a.tif", test.bytes);
        EXPECT_EQ(TiffDepth(Path("a.tif")), test.depth) << &test - cases;
    }
}

}  // namespace
