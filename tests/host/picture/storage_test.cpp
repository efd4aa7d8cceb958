// What is stored in one way comes back in that way.
#include "host/picture/storage.h"

#include "host/container/tiff_directory.h"
#include "host/picture/picture.h"
#include "host/picture/picture_format.h"
#include "host/picture/picture_writer.h"
#include "tests/host/image_bytes.h"
#include "tests/host/program_fixture.h"

namespace {

namespace fs = std::filesystem;

class StoredPicture : public Program {
  protected:
    OwnedObject<VipsImage> Opened(const std::string &name) {
        return OwnedObject<VipsImage>(
            vips_image_new_from_file(Path(name).c_str(), "access", VIPS_ACCESS_SEQUENTIAL, nullptr));
    }

    std::string PixelsOf(const std::string &name) { return BytesOf(Opened(name).get()); }

    // Reads and writes without filtering.
    std::string Pass(const std::string &from, const std::string &to, const StorageChoice &choice = {}) {
        Picture picture;
        const PictureFormat *format = nullptr;
        MaybeFailure failure = OpenPicture(Path(from), &picture);
        failure = failure ? failure : ReadPixels(&picture, {});
        failure = failure ? failure : FindFormat(to, kFormatOfName, &format);
        if (!failure) {
            Choose(choice, &picture.storage);
            failure = WritePicture(picture, *format, {}, Path(to), to, [&](int32_t row) {
                return picture.document.source.get() + row * RowBytes(picture.document);
            });
        }
        return failure ? failure->sentence : "";
    }

    // What identifies a storage; the library chooses the rest.
    std::string Described(const std::string &name) {
        const Storage storage = StorageOf(Path(name));
        std::string text;
        for (const int64_t number :
             {int64_t{storage.bits}, int64_t{storage.palette}, int64_t{storage.compression},
              int64_t{storage.predictor}, int64_t{storage.tiled}, int64_t{storage.tileWidth},
              int64_t{storage.tileHeight}, int64_t{storage.bigTiff}, int64_t{storage.pyramid},
              int64_t{storage.subDirectories}, int64_t{storage.jpegQuality}, int64_t{storage.subsampled},
              int64_t{storage.progressive}, int64_t{storage.webpQuality > 0}}) {
            text += std::to_string(number) + " ";
        }
        return text;
    }
};

TEST_F(StoredPicture, ComesBackAsItWasStored) {
    const struct {
        int bands;
        const char *name, *options;
        const char *described;  // as by Described
    } cases[] = {
        {1, "bw4.tif", "compression=ccittfax4,bitdepth=1", "1 0 4 1 0 0 0 0 0 0 95 0 0 0 "},
        {1, "bw4white.tif", "compression=ccittfax4,bitdepth=1,miniswhite", "1 0 4 1 0 0 0 0 0 0 95 0 0 0 "},
        {1, "bwlzw.tif", "compression=lzw,bitdepth=1,predictor=none", "1 0 5 1 0 0 0 0 0 0 95 0 0 0 "},
        {1, "two.tif", "compression=packbits,bitdepth=2", "2 0 3 1 0 0 0 0 0 0 95 0 0 0 "},
        {1, "four.tif", "bitdepth=4,bigtiff", "4 0 0 1 0 0 0 1 0 0 95 0 0 0 "},
        {1, "one.png", "bitdepth=1", "1 0 0 1 0 0 0 0 0 0 95 0 0 0 "},
        {1, "two.png", "bitdepth=2", "2 0 0 1 0 0 0 0 0 0 95 0 0 0 "},
        {1, "four.png", "bitdepth=4", "4 0 0 1 0 0 0 0 0 0 95 0 0 0 "},
        {3, "lzw.tif", "compression=lzw,predictor=horizontal", "0 0 5 2 0 0 0 0 0 0 95 0 0 0 "},
        {3, "zip.tif", "compression=deflate,predictor=none", "0 0 2 1 0 0 0 0 0 0 95 0 0 0 "},
        {3, "zstd.tif", "compression=zstd,predictor=horizontal", "0 0 7 2 0 0 0 0 0 0 95 0 0 0 "},
        {3, "tiles.tif", "tile,tile-width=64,tile-height=32", "0 0 0 1 1 64 32 0 0 0 95 0 0 0 "},
        {3, "levels.tif", "tile,tile-width=64,tile-height=64,pyramid", "0 0 0 1 1 64 64 0 1 0 95 0 0 0 "},
        {3, "below.tif", "tile,tile-width=64,tile-height=64,pyramid,subifd",
         "0 0 0 1 1 64 64 0 1 1 95 0 0 0 "},
        {3, "loss.webp", "Q=40", "0 0 0 1 0 0 0 0 0 0 95 0 0 1 "},
        {3, "lossless.webp", "lossless", "0 0 0 1 0 0 0 0 0 0 95 0 0 0 "},
        {3, "q30.jpg", "Q=30,subsample-mode=on", "0 0 0 1 0 0 0 0 0 0 30 1 0 0 "},
        {3, "q77.jpg", "Q=77,subsample-mode=off,interlace", "0 0 0 1 0 0 0 0 0 0 77 0 1 0 "},
        {1, "q98.jpg", "Q=98", "0 0 0 1 0 0 0 0 0 0 98 0 0 0 "},
    };
    for (const auto &test : cases) {
        SCOPED_TRACE(test.name);
        WriteNoise(std::string(test.name) + "[" + test.options + "]", 150, 100, test.bands, VIPS_FORMAT_UCHAR,
                   test.bands == 1 ? VIPS_INTERPRETATION_B_W : VIPS_INTERPRETATION_sRGB);
        EXPECT_EQ(Described(test.name), test.described);
        const std::string out = std::string("out-") + test.name;
        ASSERT_EQ(Pass(test.name, out), "");
        EXPECT_EQ(Described(out), test.described);
        EXPECT_EQ(StorageOf(Path(out)).whiteIsZero, StorageOf(Path(test.name)).whiteIsZero);
        if (out.find(".jpg") == std::string::npos && out.find("loss.webp") == std::string::npos) {
            EXPECT_TRUE(PixelsOf(out) == PixelsOf(test.name));
        }
        EXPECT_LT(fs::file_size(Path(out)), fs::file_size(Path(test.name)) * 11 / 10 + 600);
    }
}

TEST_F(StoredPicture, WhatDoesNotComeBackBecomesTheNextBest) {
    WriteNoise("jpeg.tif[compression=jpeg]", 60, 40, 3);
    WriteNoise("black.tif[bitdepth=4]", 60, 40, 1, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W);
    WriteNoise("palette.png[palette]", 60, 40, 3);
    // Four bits of which 0 is white, which the library only writes for one.
    ByteFile file;
    TiffSource tiff;
    TiffDirectory directory;
    bool whole = false;
    ASSERT_TRUE(OpenForPatching(Path("black.tif"), &file) && OpenTiff(BytesOfFile(file), &tiff) &&
                ReadDirectory(tiff, tiff.first, &directory, &whole));
    SetEntry(&directory, NumbersEntry(kTagPhotometric, kTiffShort, {0}));
    ASSERT_TRUE(AppendDirectory(directory, tiff.form, FirstDirectoryField(tiff.form), &file));
    for (const auto &[name, described] : {std::pair("jpeg.tif", "0 0 2 2 0 0 0 0 0 0 95 0 0 0 "),
                                          {"black.tif", "4 0 0 1 0 0 0 0 0 0 95 0 0 0 "},
                                          {"palette.png", "0 0 0 1 0 0 0 0 0 0 95 0 0 0 "}}) {
        EXPECT_EQ(Pass(name, std::string("out-") + name), "");
        EXPECT_EQ(Described(std::string("out-") + name), described);
        EXPECT_TRUE(PixelsOf(std::string("out-") + name) == PixelsOf(name)) << name;
    }
    WriteNoise("still.gif", 60, 40, 3);
    for (const char *name : {"palette.png", "still.gif"}) {
        const Ended told = Wait(Start({name, "-o", "told.png", "-f", "-r", "1"}));
        EXPECT_NE(told.out.find("true colour instead of a palette"), std::string::npos)
            << told.out << told.err;
    }
    WriteNoise("moving.gif[page-height=20]", 60, 40, 3);
    ExpectRefusals({{"moving.gif -o new.png", 1, "files of their own first"}});
}

TEST_F(StoredPicture, QualityOfWebpIsAboutTheInputs) {
    for (const int quality : {10, 30, 50, 75, 90, 100}) {
        WriteNoise("in.webp[Q=" + std::to_string(quality) + "]", 200, 200, 3);
        EXPECT_NEAR(StorageOf(Path("in.webp")).webpQuality, quality, 10) << quality;
    }
}

TEST_F(StoredPicture, ChoicesGoFirst) {
    WriteNoise("grey.tif", 150, 100, 1, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W);
    WriteNoise("bw.tif[bitdepth=1]", 150, 100, 1, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W);
    fs::create_directory(folder / "out");
    const struct {
        std::vector<std::string> arguments;
        const char *output, *described;
    } cases[] = {
        {{"grey.tif", "-o", "a.tif", "--compression", "lzw"}, "a.tif", "0 0 5 2 0 0 0 0 0 0 95 0 0 0 "},
        {{"bw.tif", "-o", "b.tif", "--compression", "group4"}, "b.tif", "1 0 4 1 0 0 0 0 0 0 95 0 0 0 "},
        {{"grey.tif", "bw.tif", "-o", "out", "--compression", "zip"},
         "out/bw.tif",
         "1 0 2 1 0 0 0 0 0 0 95 0 0 0 "},
        {{"grey.tif", "-o", "c.jpg", "--quality", "42"}, "c.jpg", "0 0 0 1 0 0 0 0 0 0 42 0 0 0 "},
        {{"grey.tif", "-o", "d.webp", "--quality", "42"}, "d.webp", "0 0 0 1 0 0 0 0 0 0 95 0 0 1 "},
    };
    for (const auto &test : cases) {
        EXPECT_EQ(Wait(Start(test.arguments)).err, "");
        EXPECT_EQ(Described(test.output), test.described) << test.output;
    }
    ExpectRefusals({
        {"grey.tif -o new.tif --compression group4", 2, "one bit a pixel"},
        {"grey.tif -o new.png --compression lzw", 2, "is for TIFF"},
        {"grey.tif -o new.png --quality 50", 2, "is for JPEG, WebP, HEIC and AVIF"},
        {"grey.tif -o new.tif --compression zap", 2, "none, lzw, zip"},
        {"grey.tif -o new.jpg --quality 101", 2, "--quality"},
    });
}

}  // namespace
