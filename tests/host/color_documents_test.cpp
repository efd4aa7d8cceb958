// Runs whole documents of every colour mode through the program, from the bytes of one TIFF file to those of
// another, and compares them with what the plug-in itself chooses, by the conversions written out here.
#include <algorithm>
#include <cmath>
#include <random>

#include "colors/color_modes.h"
#include "host/picture/file_probe.h"
#include "hybridmedian/public.h"
#include "photoshop/image_modes.h"
#include "tests/host/program_fixture.h"
#include "tests/support/test_host.h"

namespace {

constexpr int kWidth = 31;
constexpr int kHeight = 23;

using Conversion = uint32_t (*)(uint32_t sample);

uint32_t Same(uint32_t sample) {
    return sample;
}

uint32_t Rounded(double value) {
    return static_cast<uint32_t>(std::floor(value + 0.5));
}

uint32_t To32768(uint32_t sample) {
    return Rounded(sample * 32768.0 / 65535);
}

uint32_t From32768(uint32_t sample) {
    return Rounded(sample * 65535.0 / 32768);
}

uint32_t Inverted8(uint32_t sample) {
    return 255 - sample;
}

// A signed byte, offset by 128, and the reverse.
uint32_t OffsetBy128(uint32_t sample) {
    return (sample + 128) % 256;
}

uint32_t SignedTo32768(uint32_t sample) {
    return Rounded(static_cast<int16_t>(sample) / 2.0 + 16384);
}

uint32_t SignedFrom32768(uint32_t sample) {
    return (From32768(sample) + 32768) % 65536;
}

struct Kind {
    const char *name;
    int16_t mode;
    int32_t depth;
    int colorPlanes;
    VipsInterpretation interpretation;
    // From the file to the filter and back, for the first plane and the others.
    Conversion firstIn, otherIn, firstOut, otherOut;
};

constexpr Kind kKinds[] = {
    {"grey 8", plugInModeGrayScale, 8, 1, VIPS_INTERPRETATION_B_W, Same, Same, Same, Same},
    {"RGB 8", plugInModeRGBColor, 8, 3, VIPS_INTERPRETATION_sRGB, Same, Same, Same, Same},
    {"Lab 8", plugInModeLabColor, 8, 3, VIPS_INTERPRETATION_LAB, Same, OffsetBy128, Same, OffsetBy128},
    {"CMYK 8", plugInModeCMYKColor, 8, 4, VIPS_INTERPRETATION_CMYK, Inverted8, Inverted8, Inverted8,
     Inverted8},
    {"grey 16", plugInModeGray16, 16, 1, VIPS_INTERPRETATION_GREY16, To32768, To32768, From32768, From32768},
    {"RGB 16", plugInModeRGB48, 16, 3, VIPS_INTERPRETATION_RGB16, To32768, To32768, From32768, From32768},
    {"Lab 16", plugInModeLab48, 16, 3, VIPS_INTERPRETATION_LAB, To32768, SignedTo32768, From32768,
     SignedFrom32768},
    {"CMYK 16", plugInModeCMYK64, 16, 4, VIPS_INTERPRETATION_CMYK, To32768, To32768, From32768, From32768},
};

struct Samples {
    const Kind &kind;
    int planes;
    std::vector<uint32_t> values;

    std::vector<uint8_t> Bytes() const {
        std::vector<uint8_t> bytes;
        for (const uint32_t value : values) {
            bytes.push_back(static_cast<uint8_t>(value));
            if (kind.depth == 16) {
                bytes.push_back(static_cast<uint8_t>(value >> 8));
            }
        }
        return bytes;
    }

    static Samples FromBytes(const Kind &kind, int planes, const uint8_t *bytes) {
        Samples samples = {kind, planes, {}};
        for (int i = 0; i < kWidth * kHeight * planes; ++i) {
            samples.values.push_back(
                kind.depth == 8 ? bytes[i] : uint32_t{bytes[2 * i]} | uint32_t{bytes[2 * i + 1]} << 8);
        }
        return samples;
    }

    Samples Converted(Conversion first, Conversion other, Conversion extra) const {
        Samples converted = *this;
        for (size_t i = 0; i < values.size(); ++i) {
            const int plane = static_cast<int>(i) % planes;
            converted.values[i] = (plane == 0 ? first : plane < kind.colorPlanes ? other : extra)(values[i]);
        }
        return converted;
    }

    // The first planes alone.
    Samples Cut(int count) const {
        Samples cut = {kind, count, {}};
        for (size_t i = 0; i < values.size(); ++i) {
            if (static_cast<int>(i) % planes < count) {
                cut.values.push_back(values[i]);
            }
        }
        return cut;
    }

    std::vector<uint32_t> Color(int pixel) const {
        const auto begin = values.begin() + ptrdiff_t{pixel} * planes;
        return {begin, begin + kind.colorPlanes};
    }
};

// Extremes in the first pixels, then noise; every seventh pixel is transparent.
Samples MakeSamples(const Kind &kind, int planes) {
    Samples samples = {kind, planes, {}};
    const uint32_t top = kind.depth == 8 ? 255 : 65535;
    std::mt19937 generator(9);
    for (int i = 0; i < kWidth * kHeight * planes; ++i) {
        const bool transparent = i / planes % 7 == 3 && i % planes == kind.colorPlanes;
        const uint32_t extremes[] = {0, top, top / 2, top / 2 + 1};
        const auto noise = static_cast<uint32_t>(generator()) & top;
        samples.values.push_back(transparent ? 0 : i < 3 * planes ? extremes[noise % 4] : noise);
    }
    return samples;
}

class ColorDocuments : public Program {
  protected:
    void WriteTiff(const std::string &name, const Samples &samples) {
        const std::vector<uint8_t> bytes = samples.Bytes();
        const OwnedObject<VipsImage> image(
            vips_image_new_from_memory(bytes.data(), bytes.size(), kWidth, kHeight, samples.planes,
                                       samples.kind.depth == 8 ? VIPS_FORMAT_UCHAR : VIPS_FORMAT_USHORT));
        image->Type = samples.kind.interpretation;
        vips_image_set_blob_copy(image.get(), VIPS_META_ICC_NAME, kProfile.data(), kProfile.size());
        ASSERT_EQ(vips_tiffsave(image.get(), Path(name).c_str(), nullptr), 0) << vips_error_buffer();
    }

    // Uncompressed samples directly follow the 8-byte header.
    static Samples ReadTiff(const Samples &like, const std::string &contents) {
        return Samples::FromBytes(like.kind, like.planes,
                                  reinterpret_cast<const uint8_t *>(contents.data()) + 8);
    }

    static Samples FilteredByPlugin(const Samples &samples) {
        TestDocument document = {
            samples.kind.mode,       samples.kind.depth, static_cast<int16_t>(samples.planes),
            {0, 0, kHeight, kWidth}, samples.Bytes(),    {}};
        const TestRun run = RunScripted(document, {{kRadiusKey, typeFloat, 2}});
        EXPECT_EQ(run.result, noErr);
        return Samples::FromBytes(samples.kind, samples.planes, run.destination.data());
    }

    const std::string kProfile = std::string("a profile\0that travels", 22);
};

// Colours as the plug-in hands them back if it leaves them alone.
Samples ThroughPlugin(const Samples &colors) {
    std::vector<uint8_t> bytes = colors.Bytes();
    if (const ModeConversion *conversion = ConversionOf(colors.kind.mode, colors.kind.depth / 8)) {
        conversion->toRGB(bytes.data(), kWidth * kHeight);
        conversion->fromRGB(bytes.data(), kWidth * kHeight);
    }
    return Samples::FromBytes(colors.kind, colors.planes, bytes.data());
}

TEST_F(ColorDocuments, HoldThePixelsThatThePluginChooses) {
    // The kinds of the extra channels, and how many of these the plug-in sees: the first transparent one.
    const struct {
        std::vector<uint16_t> kinds;
        int shown;
    } extras[] = {{{}, 0}, {{2}, 1}, {{1, 0}, 1}, {{0, 0}, 0}};
    for (const Kind &kind : kKinds) {
        for (const auto &[kinds, shown] : extras) {
            SCOPED_TRACE(testing::Message() << kind.name << " and " << testing::PrintToString(kinds));
            const int planes = kind.colorPlanes + static_cast<int>(kinds.size());
            const Samples samples = MakeSamples(kind, planes);
            WriteTiff("in.tif", samples);
            ASSERT_TRUE(kinds.empty() || ChangeTiffExtraSamples(Path("in.tif"), kinds));
            const Ended ended = Wait(Start({"in.tif", "-o", "out.tif", "-r", "2", "-f"}));
            ASSERT_EQ(ended.status, 0) << ended.err;
            const std::string contents = ContentsOf(folder / "out.tif");
            const Samples result = ReadTiff(samples, contents);
            EXPECT_EQ(TiffExtraSamples(Path("out.tif")), kinds);
            EXPECT_NE(contents.find(kProfile), std::string::npos) << "the profile is missing";

            const Conversion extraIn = kind.depth == 8 ? Same : To32768;
            const Samples chosen =
                FilteredByPlugin(
                    samples.Converted(kind.firstIn, kind.otherIn, extraIn).Cut(kind.colorPlanes + shown))
                    .Cut(kind.colorPlanes);
            const Samples white = chosen.Converted(kind.firstOut, kind.otherOut, Same);
            const Samples through =
                ThroughPlugin(result.Converted(kind.firstIn, kind.otherIn, extraIn).Cut(kind.colorPlanes));
            int changed = 0;
            for (int pixel = 0; pixel < kWidth * kHeight; ++pixel) {
                const auto extra = [&](const Samples &all) {
                    const auto begin = all.values.begin() + ptrdiff_t{pixel} * planes;
                    return std::vector<uint32_t>(begin + kind.colorPlanes, begin + planes);
                };
                ASSERT_EQ(extra(result), extra(samples));
                changed += result.Color(pixel) != samples.Color(pixel);
                if (shown == 1 && extra(samples)[0] == 0) {
                    ASSERT_EQ(result.Color(pixel), samples.Color(pixel)) << "transparent";
                } else if (shown == 0 || result.Color(pixel) != white.Color(pixel)) {
                    ASSERT_EQ(through.Color(pixel), chosen.Color(pixel)) << pixel;
                    bool original = false;
                    for (int other = 0; other < kWidth * kHeight; ++other) {
                        original = original || samples.Color(other) == result.Color(pixel);
                    }
                    ASSERT_TRUE(original) << pixel;
                }
            }
            EXPECT_GT(changed, 0) << "nothing was filtered";
        }
    }
}

}  // namespace
