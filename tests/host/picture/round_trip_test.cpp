// Small files of all kinds go through one batch of the program, and other programs' readers compare them with
// what comes out: pixels, channels, metadata and storage.
#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "host/container/tiff_directory.h"
#include "host/picture/file_probe.h"
#include "tests/host/image_bytes.h"
#include "tests/host/program_fixture.h"

namespace {

namespace fs = std::filesystem;

constexpr int kWidth = 70;
constexpr int kHeight = 50;

enum Said { kNothing, kPhotograph, kResolution };

struct Case {
    const char *name, *options;
    int bands = 3;
    Said said = kNothing;
    VipsBandFormat format = VIPS_FORMAT_UCHAR;
    VipsInterpretation interpretation = VIPS_INTERPRETATION_sRGB;
    std::vector<uint16_t> extras = {};  // the kinds of a TIFF's channels beside the colours
    double tolerance = 0;               // mean difference from the input; 0 for originals only
};

constexpr auto kGrey = VIPS_INTERPRETATION_B_W;
constexpr auto kGrey16 = VIPS_INTERPRETATION_GREY16;
constexpr auto kRGB = VIPS_INTERPRETATION_sRGB;
constexpr auto kRGB16 = VIPS_INTERPRETATION_RGB16;
constexpr auto kCMYK = VIPS_INTERPRETATION_CMYK;
constexpr auto kLab = VIPS_INTERPRETATION_LAB;
constexpr auto k8 = VIPS_FORMAT_UCHAR;
constexpr auto k16 = VIPS_FORMAT_USHORT;
constexpr auto kFloat = VIPS_FORMAT_FLOAT;

const std::vector<Case> kCases = {
    {"grey.tif", "", 1, kPhotograph, k8, kGrey},
    {"grey16.tif", "compression=lzw", 1, kResolution, k16, kGrey16},
    {"rgb16.tif", "compression=deflate,predictor=horizontal", 3, kPhotograph, k16, kRGB16},
    {"cmyk.tif", "compression=packbits", 4, kPhotograph, k8, kCMYK},
    {"cmyk16.tif", "compression=lzw", 4, kNothing, k16, kCMYK},
    {"lab.tif", "compression=deflate", 3, kNothing, k8, kLab},
    {"lab16.tif", "compression=packbits", 3, kResolution, k16, kLab},
    {"greyfloat.tif", "compression=deflate,predictor=float", 1, kResolution, kFloat, kGrey},
    {"rgbfloat.tif", "tile,tile-width=32,tile-height=16", 3, kNothing, kFloat, kRGB},
    {"associated.tif", "compression=lzw", 4, kNothing, k8, kRGB, {1}},
    {"unassociated.tif", "tile,tile-width=16,tile-height=16", 4, kPhotograph, k8, kRGB, {2}},
    {"unspecified.tif", "compression=deflate", 4, kPhotograph, k8, kRGB, {0}},
    {"infrared16.tif", "", 4, kResolution, k16, kRGB16, {0}},
    {"twoextras.tif", "compression=packbits", 5, kNothing, k8, kRGB, {2, 0}},
    {"greyalpha16.tif", "", 2, kNothing, k16, kGrey16, {2}},
    {"cmykspot.tif", "compression=lzw", 5, kNothing, k8, kCMYK, {0}},
    {"fax.tif", "compression=ccittfax4,bitdepth=1", 1, kResolution, k8, kGrey},
    {"faxwhite.tif", "compression=ccittfax4,bitdepth=1,miniswhite", 1, kPhotograph, k8, kGrey},
    {"two.tif", "compression=lzw,bitdepth=2,predictor=none", 1, kNothing, k8, kGrey},
    {"four.tif", "compression=packbits,bitdepth=4", 1, kNothing, k8, kGrey},
    {"zstd.tif", "compression=zstd,predictor=horizontal", 3, kNothing},
    {"big.tif", "bigtiff,compression=lzw,predictor=horizontal", 3, kPhotograph},
    {"bigtiles16.tif", "bigtiff,tile,tile-width=32,tile-height=32", 3, kNothing, k16, kRGB16},
    {"pyramid.tif", "tile,tile-width=16,tile-height=16,pyramid,compression=deflate", 3, kResolution},
    {"below.tif", "tile,tile-width=16,tile-height=16,pyramid,subifd", 1, kNothing, k8, kGrey},
    {"q95.jpg", "Q=95,subsample-mode=off", 3, kPhotograph, k8, kRGB, {}, 12},
    {"q60.jpg", "Q=60,subsample-mode=on", 3, kResolution, k8, kRGB, {}, 12},
    {"progressive.jpg", "Q=85,interlace", 3, kPhotograph, k8, kRGB, {}, 12},
    {"grey.jpg", "Q=80", 1, kPhotograph, k8, kGrey, {}, 12},
    {"cmyk.jpg", "Q=90", 4, kNothing, k8, kCMYK, {}, 12},
    {"lossless.webp", "lossless", 3, kPhotograph},
    {"alpha.webp", "lossless", 4, kNothing},
    {"lossy.webp", "Q=80", 3, kPhotograph, k8, kRGB, {}, 15},
    {"lossyalpha.webp", "Q=70", 4, kNothing, k8, kRGB, {}, 15},
    {"photo.heic", "Q=80", 3, kPhotograph, k8, kRGB, {}, 12},
    {"alpha.heic", "Q=80", 4, kNothing, k8, kRGB, {}, 12},
    {"photo.avif", "Q=80", 3, kPhotograph, k8, kRGB, {}, 12},
    {"rgb.png", "", 3, kPhotograph},
    {"grey.png", "", 1, kResolution, k8, kGrey},
    {"greyalpha.png", "", 2, kNothing, k8, kGrey},
    {"rgba.png", "interlace", 4, kPhotograph},
    {"rgb16.png", "", 3, kPhotograph, k16, kRGB16},
    {"rgba16.png", "", 4, kNothing, k16, kRGB16},
    {"one.png", "bitdepth=1", 1, kResolution, k8, kGrey},
    {"four.png", "bitdepth=4", 1, kPhotograph, k8, kGrey},
    {"palette.png", "palette", 3, kNothing},
    {"rgb.ppm", "", 3},
    {"rgb16.ppm", "", 3, kNothing, k16, kRGB16},
    {"grey.pgm", "", 1, kNothing, k8, kGrey},
};

class RoundTrip : public Program {
  protected:
    OwnedObject<VipsImage> Opened(const std::string &name) {
        OwnedObject<VipsImage> image(vips_image_new_from_file(Path(name).c_str(), nullptr));
        EXPECT_NE(image, nullptr) << name << vips_error_buffer();
        return image;
    }

    // Shades of large steps, and specks; the last channel is different.
    void Make(const Case &test, const std::string &name) {
        std::vector<float> samples;
        for (int i = 0; i < kWidth * kHeight * test.bands; ++i) {
            const int pixel = i / test.bands;
            const int band = i % test.bands;
            const int shade = (pixel % kWidth / 8 * 23 + pixel / kWidth / 9 * 17 + band * 60) % 250;
            const int speck = pixel * 7919 % 97 < 4 ? 255 - shade : shade;
            samples.push_back(static_cast<float>(speck));
        }
        const OwnedObject<VipsImage> floats(vips_image_new_from_memory(
            samples.data(), samples.size() * sizeof(float), kWidth, kHeight, test.bands, VIPS_FORMAT_FLOAT));
        VipsImage *scaled = nullptr, *image = nullptr;
        vips_linear1(floats.get(), &scaled, test.format == k16 ? 257 : 1, test.format == k16 ? -19 : 0,
                     nullptr);
        vips_cast(scaled, &image, test.format, nullptr);
        const OwnedObject<VipsImage> ownedScaled(scaled), owned(image);
        image->Type = test.interpretation;
        if (test.said != kNothing) {
            image->Xres = image->Yres = test.said == kResolution ? 11.5 : 240 / 25.4;
            vips_image_set_string(image, VIPS_META_RESOLUTION_UNIT, test.said == kResolution ? "cm" : "in");
        }
        if (test.said == kPhotograph) {
            vips_image_set_string(image, "exif-ifd0-Make", "Acme");
            vips_image_set_string(image, "exif-ifd3-GPSLatitude", "48/1 30/1 15/1");
            vips_image_set_int(image, VIPS_META_ORIENTATION, 6);
            const std::string xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'/>";
            vips_image_set_blob_copy(image, VIPS_META_XMP_NAME, xmp.data(), xmp.size());
            const std::string iptc = std::string("\x1C\x02\x78\0\x04text", 9);
            vips_image_set_blob_copy(image, VIPS_META_IPTC_NAME, iptc.data(), iptc.size());
            if (test.interpretation == kRGB) {
                VipsBlob *profile = nullptr;
                ASSERT_EQ(vips_profile_load("srgb", &profile, nullptr), 0);
                size_t size = 0;
                const void *bytes = vips_blob_get(profile, &size);
                vips_image_set_blob_copy(image, VIPS_META_ICC_NAME, bytes, size);
                vips_area_unref(VIPS_AREA(profile));
            }
        }
        ASSERT_EQ(vips_image_write_to_file(image, (Path(name) + "[" + test.options + "]").c_str(), nullptr),
                  0)
            << vips_error_buffer();
        ASSERT_TRUE(test.extras.empty() || ChangeTiffExtraSamples(Path(name), test.extras));
    }

    // All that the library reads beside the pixels: metadata and facts about the storage.
    std::string Said(const std::string &name) {
        const OwnedObject<VipsImage> image = Opened(name);
        std::string said;
        gchar **fields = vips_image_get_fields(image.get());
        for (gchar **field = fields; *field != nullptr; ++field) {
            char *text = nullptr;
            // EXIF's own bytes begin in one way or the other; its fields are compared one by one.
            if (std::string(*field) != "filename" && std::string(*field) != VIPS_META_EXIF_NAME &&
                vips_image_get_as_string(image.get(), *field, &text) == 0) {
                said += std::string(*field) + " = " + text + "\n";
                g_free(text);
            }
        }
        g_strfreev(fields);
        return said;
    }

    // 0 takes the resolution away, 1 only its unit.
    void ChangeUnit(int unit) {
        ByteFile file;
        TiffSource tiff;
        TiffDirectory directory;
        bool whole = false;
        ASSERT_TRUE(OpenForPatching(Path("odd.tif"), &file) && OpenTiff(BytesOfFile(file), &tiff) &&
                    ReadDirectory(tiff, tiff.first, &directory, &whole));
        RemoveEntry(&directory, kTagResolutionUnit);
        if (unit == 1) {
            SetEntry(&directory, NumbersEntry(kTagResolutionUnit, kTiffShort, {1}));
        } else {
            RemoveEntry(&directory, kTagXResolution);
            RemoveEntry(&directory, kTagYResolution);
        }
        ASSERT_TRUE(AppendDirectory(directory, tiff.form, FirstDirectoryField(tiff.form), &file));
    }

    // What libtiff's own program says of all pages, without the places of things.
    std::string TiffInfo(const std::string &name) {
        std::string told;
        const std::string list = (output / "info").string();
        EXPECT_EQ(
            std::system(("tiffinfo '" + Path(name) +
                         "' 2>/dev/null | grep -v -e offset -e SubIFD -e Rows/Strip > " + list + " || true")
                            .c_str()),
            0);
        return ContentsOf(list);
    }

    // Every pixel is one of those around it in the input, but keeps its own further channels.
    void ComparePixels(const Case &test, const std::string &in, const std::string &out) {
        const OwnedObject<VipsImage> images[] = {Opened(in), Opened(out)};
        ASSERT_EQ(vips_image_get_format(images[0].get()), vips_image_get_format(images[1].get()));
        ASSERT_EQ(vips_image_get_bands(images[0].get()), vips_image_get_bands(images[1].get()));
        const std::string pixels[] = {BytesOf(images[0].get()), BytesOf(images[1].get())};
        ASSERT_EQ(pixels[0].size(), pixels[1].size());
        if (test.tolerance > 0) {
            double sum = 0;
            for (size_t i = 0; i < pixels[0].size(); ++i) {
                sum += std::abs(int{static_cast<uint8_t>(pixels[0][i])} -
                                int{static_cast<uint8_t>(pixels[1][i])});
            }
            EXPECT_LT(sum / static_cast<double>(pixels[0].size()), test.tolerance);
            return;
        }
        // Lab of 8 bits is read with a fourth sample, for further bits.
        const auto bands = static_cast<size_t>(vips_image_get_bands(images[0].get()));
        const size_t step = pixels[0].size() / (kWidth * kHeight);
        const size_t sample = step / bands;
        const bool hasExtra = test.bands == 2 || test.bands == 5 || test.extras.size() == 1 ||
                              (test.bands == 4 && test.interpretation != kCMYK);
        const size_t extras = test.extras.empty() ? hasExtra : test.extras.size();
        const size_t colors = (bands - extras) * sample;
        const auto at = [&](int picture, int x, int y) {
            return std::string_view(pixels[picture]).substr(static_cast<size_t>(y * kWidth + x) * step, step);
        };
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                const std::string_view result = at(1, x, y);
                ASSERT_EQ(result.substr(colors), at(0, x, y).substr(colors)) << x << " " << y;
                bool original = false;
                for (int near = 0; near < 9; ++near) {
                    const int nearX = std::clamp(x + near % 3 - 1, 0, kWidth - 1);
                    const int nearY = std::clamp(y + near / 3 - 1, 0, kHeight - 1);
                    original = original || at(0, nearX, nearY).substr(0, colors) == result.substr(0, colors);
                }
                ASSERT_TRUE(original) << x << " " << y;
            }
        }
        EXPECT_NE(pixels[0], pixels[1]) << "nothing was filtered";
    }
};

TEST_F(RoundTrip, KeepsPixelsChannelsMetadataAndStorage) {
    std::vector<std::string> arguments;
    std::vector<Case> cases = kCases;
    std::erase_if(cases, [](const Case &test) {
        const std::string suffix = fs::path(test.name).extension();
        return !HasHeif() && (suffix == ".heic" || suffix == ".avif");
    });
    for (const Case &test : cases) {
        Make(test, test.name);
        arguments.emplace_back(test.name);
    }
    fs::create_directory(folder / "out");
    arguments.insert(arguments.end(), {"-o", "out", "-r", "1"});
    const Ended ended = Wait(Start(arguments));
    EXPECT_EQ(ended.status, 0) << ended.err;
    for (const Case &test : cases) {
        SCOPED_TRACE(test.name);
        const std::string name = test.name;
        const std::string out = "out/" + name;
        if (!fs::exists(folder / out)) {
            ADD_FAILURE() << "there is no result";
            continue;
        }
        if (name != "palette.png") {
            EXPECT_EQ(Said(out), Said(name));
        }
        if (name.ends_with(".tif")) {
            EXPECT_EQ(TiffInfo(out), TiffInfo(name));
            EXPECT_EQ(TiffExtraSamples(Path(out)), test.extras);
        }
        EXPECT_LT(fs::file_size(Path(out)), fs::file_size(Path(name)) * 5 / 4 + 600);
        for (const std::string &file : {name, out}) {
            // The library divides associated alpha out.
            ASSERT_TRUE(name != "associated.tif" || ChangeTiffExtraSamples(Path(file), {kUnassociatedAlpha}));
        }
        ComparePixels(test, name, out);
    }
}

// What the library does not write: a TIFF without resolution, or one without its unit.
TEST_F(RoundTrip, ResolutionsStayAsOddAsTheyWere) {
    for (const int unit : {0, 1}) {
        SCOPED_TRACE(unit);
        Make({"odd.tif", "compression=lzw", 3, kResolution}, "odd.tif");
        ChangeUnit(unit);
        ASSERT_EQ(Wait(Start({"odd.tif", "-o", "new.tif", "-r", "1", "-f"})).status, 0);
        EXPECT_EQ(TiffInfo("new.tif"), TiffInfo("odd.tif"));
        EXPECT_EQ(TiffInfo("new.tif").find("Resolution") != std::string::npos, unit == 1);
    }
}

// Only read: the colours of the table, and no others.
TEST_F(RoundTrip, GifsGoIntoOtherFormats) {
    Make({"still.gif", "dither=0"}, "still.gif");
    ASSERT_EQ(Wait(Start({"still.gif", "-o", "new.png", "-r", "1"})).status, 0);
    ComparePixels({"still.gif", ""}, "still.gif", "new.png");
}

}  // namespace
