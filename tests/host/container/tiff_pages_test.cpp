// Pages of TIFFs: taken apart, joined, and filtered.
#include "host/container/tiff_pages.h"

#include "host/picture/file_probe.h"
#include "tests/host/image_bytes.h"
#include "tests/host/program_fixture.h"

namespace {

class TiffPages : public Program {
  protected:
    std::string PixelsOf(const std::string &name, int page) {
        const OwnedObject<VipsImage> image(
            vips_image_new_from_file((Path(name) + "[page=" + std::to_string(page) + "]").c_str(), nullptr));
        return BytesOf(image.get());
    }

    // Appends all pages of the files to a new one.
    bool Join(const std::vector<std::string> &names, const TiffForm &form, const std::string &to) {
        WriteBytes(to, "");
        ByteFile joined;
        TiffJoiner joiner;
        bool done = OpenForPatching(Path(to), &joined) && StartTiff(form, &joined, &joiner);
        for (const std::string &name : names) {
            ByteFile file;
            TiffSource tiff;
            done = done && OpenForReading(Path(name), &file) && OpenTiff(BytesOfFile(file), &tiff);
            for (const TiffPage &page : PagesOfTiff(file)) {
                done = done && CanJoin(tiff, page, joiner) && AppendPage(tiff, page, file, &joiner);
            }
        }
        return done;
    }

    size_t CountOf(const std::string &name) {
        ByteFile file;
        EXPECT_TRUE(OpenForReading(Path(name), &file));
        return PagesOfTiff(file).size();
    }
};

TEST_F(TiffPages, AreJoinedAndTakenApartAsTheyAre) {
    const std::vector<std::string> names = {"grey.tif", "rgb16.tif", "tiles.tif", "below.tif", "fax.tif"};
    WriteNoise("grey.tif[xres=7]", 40, 30, 1, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W);
    WriteNoise("rgb16.tif[compression=lzw]", 90, 20, 3, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_RGB16);
    WriteNoise("tiles.tif[tile,tile-width=32,tile-height=16,compression=deflate,bigtiff]", 100, 70, 4);
    WriteNoise("below.tif[tile,pyramid,subifd]", 300, 290, 3);
    WriteNoise("fax.tif[compression=ccittfax4,bitdepth=1]", 77, 33, 1, VIPS_FORMAT_UCHAR,
               VIPS_INTERPRETATION_B_W);
    for (const TiffForm form : {TiffForm{false, false}, {false, true}}) {
        ASSERT_TRUE(Join(names, form, "all.tif"));
        ASSERT_EQ(CountOf("all.tif"), names.size());
        // Once more, out of many and into many.
        ASSERT_TRUE(Join({"all.tif", "grey.tif"}, {false, !form.big}, "more.tif"));
        ASSERT_EQ(CountOf("more.tif"), names.size() + 1);
        for (size_t i = 0; i <= names.size(); ++i) {
            const std::string expected = PixelsOf(names[i % names.size()], 0);
            EXPECT_FALSE(expected.empty());
            EXPECT_TRUE(PixelsOf("more.tif", static_cast<int>(i)) == expected) << i;
        }
        const OwnedObject<VipsImage> level(
            vips_image_new_from_file((Path("more.tif") + "[page=3,subifd=0]").c_str(), nullptr));
        ASSERT_NE(level, nullptr);
        EXPECT_EQ(vips_image_get_width(level.get()), 150);
        EXPECT_FALSE(BytesOf(level.get()).empty());
    }
    // Bytes of whole samples go into either order, those of larger ones do not.
    EXPECT_TRUE(Join({"grey.tif", "fax.tif"}, {true, false}, "mixed.tif"));
    EXPECT_TRUE(PixelsOf("mixed.tif", 1) == PixelsOf("fax.tif", 0));
    EXPECT_FALSE(Join({"rgb16.tif"}, {true, false}, "mixed.tif"));
}

TEST_F(TiffPages, DamageEndsThem) {
    WriteNoise("one.tif", 40, 30, 3);
    ASSERT_TRUE(Join({"one.tif", "one.tif", "one.tif"}, {}, "three.tif"));
    const std::string three = ContentsOf(folder / "three.tif");
    for (size_t length : {three.size() - 100, three.size() / 2, size_t{5}}) {
        WriteBytes("cut.tif", three.substr(0, length));
        EXPECT_TRUE(CountOf("cut.tif") < 3 || !Join({"cut.tif"}, {}, "joined.tif")) << length;
    }
    // The first page points to itself.
    ByteFile file;
    TiffSource tiff;
    TiffDirectory directory;
    bool whole = false;
    ASSERT_TRUE(OpenForPatching(Path("one.tif"), &file) && OpenTiff(BytesOfFile(file), &tiff) &&
                ReadDirectory(tiff, tiff.first, &directory, &whole));
    directory.next = file.size;
    ASSERT_TRUE(AppendDirectory(directory, tiff.form, 4, &file));
    EXPECT_EQ(CountOf("one.tif"), 1u);
    // Its pixels end too early.
    SetEntry(&directory, NumbersEntry(kTagStripByteCounts, kTiffLong, {1 << 20}));
    ASSERT_TRUE(AppendDirectory(directory, tiff.form, 4, &file));
    EXPECT_FALSE(Join({"one.tif"}, {}, "joined.tif"));
}

// Whole numbers of two bytes in the other order, in place.
void SwapBytes(ByteFile *file, uint64_t place, uint64_t count) {
    std::string bytes;
    ASSERT_TRUE(ReadAt(*file, place, count, &bytes));
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        std::swap(bytes[i], bytes[i + 1]);
    }
    ASSERT_TRUE(WriteAt(file, place, bytes));
}

TEST_F(TiffPages, AreFilteredAsPicturesOfTheirOwn) {
    const std::vector<std::string> names = {"0.tif", "1.tif", "2.tif", "3.tif", "4.tif", "5.tif"};
    WriteNoise("0.tif[xres=7]", 40, 30, 1, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W);
    WriteNoise("1.tif[compression=lzw]", 900, 520, 4, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_RGB16);
    WriteNoise("2.tif[tile,tile-width=32,tile-height=16,compression=deflate]", 100, 70, 3, VIPS_FORMAT_USHORT,
               VIPS_INTERPRETATION_LABS);
    WriteNoise("3.tif[tile,pyramid,subifd]", 300, 290, 3);
    WriteNoise("4.tif[compression=ccittfax4,bitdepth=1]", 77, 33, 1, VIPS_FORMAT_UCHAR,
               VIPS_INTERPRETATION_B_W);
    WriteNoise("5.tif", 40, 30, 4, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_CMYK);
    ASSERT_TRUE(ChangeTiffExtraSamples(Path("1.tif"), {kAssociatedAlpha}));
    for (const std::string &name : names) {
        ByteFile file;
        TiffSource tiff;
        TiffDirectory directory;
        bool whole = false;
        ASSERT_TRUE(OpenForPatching(Path(name), &file) && OpenTiff(BytesOfFile(file), &tiff) &&
                    ReadDirectory(tiff, tiff.first, &directory, &whole));
        SetEntry(&directory, TextEntry(kTagImageDescription, "page of " + name));
        directory.next = 0;
        ASSERT_TRUE(AppendDirectory(directory, tiff.form, 4, &file));
        ASSERT_EQ(Wait(Start({name, "-o", "single-" + name, "-r", "2"})).status, 0);
    }
    const struct {
        bool big;
        std::vector<std::string> options;
        size_t first, end;
        std::string told;
    } cases[] = {
        {false, {"-j", "1"}, 0, 6, ": 6 pages of different kinds, radius 2,"},
        {true, {"-j", "3"}, 0, 6, ": 6 pages of different kinds, radius 2,"},
        {false, {"--page", "2-4"}, 1, 4, ": 3 pages of different kinds, radius 2,"},
        {true, {"--page", "6"}, 5, 6, ": 40 x 30 CMYK, 8 bits, radius 2,"},
    };
    for (const auto &[big, options, first, end, told] : cases) {
        ASSERT_TRUE(Join(names, {false, big}, "stack.tif"));
        std::vector<std::string> command = {"stack.tif", "-o", "out.tif", "-f", "-r", "2"};
        command.insert(command.end(), options.begin(), options.end());
        const Ended ended = Wait(Start(command));
        ASSERT_EQ(ended.status, 0) << ended.err;
        EXPECT_NE(ended.out.find(told), std::string::npos) << ended.out;
        ASSERT_EQ(CountOf("out.tif"), names.size());
        ByteFile out;
        ASSERT_TRUE(OpenForReading(Path("out.tif"), &out));
        TiffSource tiff;
        ASSERT_TRUE(OpenTiff(BytesOfFile(out), &tiff));
        EXPECT_EQ(tiff.form.big, big);
        for (size_t i = 0; i < names.size(); ++i) {
            const bool filtered = first <= i && i < end;
            EXPECT_TRUE(PixelsOf("out.tif", static_cast<int>(i)) ==
                        PixelsOf((filtered ? "single-" : "") + names[i], 0))
                << i;
            TiffDirectory directory;
            bool whole = false;
            ASSERT_TRUE(ReadDirectory(tiff, PagesOfTiff(out)[i].place, &directory, &whole));
            EXPECT_EQ(FindEntry(directory, kTagImageDescription)->bytes, "page of " + names[i] + '\0');
        }
    }
    // One page goes into any format.
    ASSERT_EQ(Wait(Start({"stack.tif", "--page", "4", "-o", "out.png", "-r", "2"})).status, 0);
    ASSERT_EQ(Wait(Start({"3.tif", "-o", "single.png", "-r", "2"})).status, 0);
    EXPECT_EQ(ContentsOf(folder / "out.png"), ContentsOf(folder / "single.png"));
    WriteNoise("uint.tif", 40, 30, 1, VIPS_FORMAT_UINT, VIPS_INTERPRETATION_B_W);
    ASSERT_TRUE(Join({"0.tif", "uint.tif"}, {}, "odd.tif"));
    ExpectRefusals({{"odd.tif -o new.tif", 1, "odd.tif, page 2: its samples are 32-bit integers"},
                    {"stack.tif -o new.tif --select 0,0,41,3", 2, "stack.tif, page 1: the rectangle"},
                    {"stack.tif -o new.tif --select 0,0,40,31 --page 2-6", 2, "stack.tif, page 6: the rec"}});
}

TEST_F(TiffPages, KeepTheirSamplesInEitherByteOrder) {
    WriteNoise("0.tif", 40, 30, 1, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_GREY16);
    ASSERT_TRUE(Join({"0.tif", "0.tif"}, {false, false}, "little.tif"));
    ByteFile from, to;
    TiffSource tiff;
    TiffJoiner joiner;
    WriteBytes("big.tif", "");
    ASSERT_TRUE(OpenForPatching(Path("little.tif"), &from) && OpenTiff(BytesOfFile(from), &tiff) &&
                OpenForPatching(Path("big.tif"), &to) && StartTiff({true, false}, &to, &joiner));
    for (const TiffPage &page : PagesOfTiff(from)) {
        TiffDirectory directory;
        bool whole = false;
        ASSERT_TRUE(ReadDirectory(tiff, page.place, &directory, &whole));
        SwapBytes(&from, NumberOf(directory, kTagStripOffsets, 0), 40 * 30 * 2);
        ASSERT_TRUE(AppendPage(tiff, page, from, &joiner));
    }
    ASSERT_TRUE(PixelsOf("big.tif", 0) == PixelsOf("0.tif", 0));
    ASSERT_EQ(Wait(Start({"0.tif", "-o", "single.tif", "-r", "1"})).status, 0);
    ASSERT_EQ(Wait(Start({"big.tif", "-o", "out.tif", "-r", "1", "--page", "1"})).status, 0);
    EXPECT_TRUE(PixelsOf("out.tif", 0) == PixelsOf("single.tif", 0));
    EXPECT_TRUE(PixelsOf("out.tif", 1) == PixelsOf("0.tif", 0));
}

}  // namespace
