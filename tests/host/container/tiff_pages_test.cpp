// Pages of TIFFs, taken apart and joined.
#include "host/container/tiff_pages.h"

#include "tests/host/program_fixture.h"

namespace {

class TiffPages : public Program {
  protected:
    std::string PixelsOf(const std::string &name, int page) {
        const OwnedObject<VipsImage> image(
            vips_image_new_from_file((Path(name) + "[page=" + std::to_string(page) + "]").c_str(), nullptr));
        size_t size = 0;
        void *pixels = image == nullptr ? nullptr : vips_image_write_to_memory(image.get(), &size);
        std::string bytes(static_cast<const char *>(pixels), size);
        g_free(pixels);
        return bytes;
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
        EXPECT_EQ(vips_image_write_to_memory(level.get(), nullptr) == nullptr, false);
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

}  // namespace
