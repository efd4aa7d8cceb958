// Metadata from file to file. scripts/test-metadata.sh compares real files field by field; here are the odd
// ones.
#include "host/picture/metadata.h"

#include <sys/resource.h>

#include "host/container/byte_order.h"
#include "host/container/heif_boxes.h"
#include "host/container/jpeg_segments.h"
#include "host/container/maker_note.h"
#include "host/container/png_chunks.h"
#include "host/container/tiff_directory.h"
#include "host/picture/exiv2_library.h"
#include "host/picture/picture.h"
#include "host/picture/vips_library.h"
#include "tests/host/host_fixture.h"
#include "tests/host/image_bytes.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

class MetadataFile : public HostTest {
  protected:
    // Small pictures without metadata, of a kind that the name tells.
    void WritePixels(const std::string &name) {
        VipsImage *black = nullptr;
        vips_black(&black, 24, 18, "bands", 3, nullptr);
        const OwnedObject<VipsImage> image(black);
        image->Type = VIPS_INTERPRETATION_sRGB;
        ASSERT_EQ(vips_image_write_to_file(black, (Path(name) + "[strip]").c_str(), nullptr), 0);
    }

    // What was lost.
    std::string Carry(const std::string &from, const std::string &to) {
        if (!fs::exists(folder / to)) {
            WritePixels(to);
        }
        std::vector<std::string> lost;
        const MaybeFailure failure = CarryMetadata({Path(from), Path(to), to}, &lost);
        EXPECT_FALSE(failure) << failure->sentence;
        EXPECT_FALSE(OwnedObject<VipsImage>(vips_image_new_from_file(Path(to).c_str(), nullptr)) == nullptr)
            << to << ": " << TakeVipsError();
        return WordsOnLoss("it", lost);
    }

    std::vector<JpegSegment> SegmentsOf(const std::string &name) {
        ByteFile file;
        std::vector<JpegSegment> segments;
        uint64_t headBytes = 0;
        EXPECT_TRUE(OpenForReading(Path(name), &file) && ReadJpegSegments(file, &segments, &headBytes));
        return segments;
    }

    // A JPEG with these segments.
    void WriteJpeg(const std::string &name, const std::vector<JpegSegment> &segments) {
        WritePixels(name);
        ByteFile file;
        ASSERT_TRUE(OpenForPatching(Path(name), &file) && ReplaceHead(&file, 2, PackJpegHead(segments)));
    }

    TiffDirectory DirectoryOf(const std::string &name) {
        ByteFile file;
        TiffSource tiff;
        TiffDirectory directory;
        bool whole = false;
        EXPECT_TRUE(OpenForReading(Path(name), &file) && OpenTiff(BytesOfFile(file), &tiff) &&
                    ReadDirectory(tiff, tiff.first, &directory, &whole) && whole);
        return directory;
    }
};

TiffDirectory SomeDirectory() {
    TiffDirectory inner;
    inner.entries = {NumbersEntry(33434, kTiffRational, {1, 250}),
                     BytesEntry(kTagMakerNote, kTiffUndefined, "a note of its own")};
    TiffDirectory directory;
    directory.entries = {TextEntry(271, "Acme"),
                         NumbersEntry(274, kTiffShort, {6}),
                         {kTagExif, kTiffLong, 1, {}, 0, {inner}},
                         NumbersEntry(65000, kTiffShort, {1, 2, 3}),
                         BytesEntry(65001, 6, "\xFF\1\2\3\4")};
    return directory;
}

std::string Listed(const TiffDirectory &directory) {
    std::string list;
    for (const TiffEntry &entry : directory.entries) {
        list += std::to_string(entry.tag) + "(" + std::to_string(entry.count) + ")";
        list += entry.children.empty() ? "=" + entry.bytes + ";" : "{" + Listed(entry.children[0]) + "}";
    }
    return list;
}

TEST_F(MetadataFile, DirectoriesAreTheSameInEveryForm) {
    for (const TiffForm form : {TiffForm{false, false}, {true, false}, {false, true}, {true, true}}) {
        std::string header = form.bigEndian ? "MM" : "II";
        header += NumberBytes(form.big ? 43 : 42, 2, form.bigEndian);
        header += form.big ? NumberBytes(form.bigEndian ? 0x00080000 : 8, 4, form.bigEndian) : "";
        header += NumberBytes(form.big ? 16 : 8, form.big ? 8 : 4, form.bigEndian);
        TiffDirectory directory = SomeDirectory();
        directory.entries.push_back(NumbersEntry(65002, kTiffLong8, {7}));
        directory.entries.push_back(NumbersEntry(65003, kTiffLong8, {1ULL << 40}));
        const std::string block = header + PackDirectory(directory, form, header.size());
        TiffSource tiff;
        TiffDirectory read;
        bool whole = false;
        ASSERT_TRUE(OpenTiff(BytesOfBlock(block), &tiff) && ReadDirectory(tiff, tiff.first, &read, &whole));
        EXPECT_TRUE(whole);
        if (!form.big) {
            directory = SomeDirectory();
            directory.entries.push_back(NumbersEntry(65002, kTiffLong, {7}));
        }
        EXPECT_EQ(Listed(read), Listed(directory)) << form.bigEndian << form.big;
        // A file that ends anywhere, or is wrong anywhere, is read without harm.
        for (size_t i = 0; i < block.size(); ++i) {
            for (const int way : {0, 1, 2}) {
                std::string bad = way == 0 ? block.substr(0, i) : block;
                if (way != 0) {
                    bad[i] = static_cast<char>(way == 1 ? 0xFF : bad[i] ^ 8);
                }
                TiffDirectory ignored;
                if (OpenTiff(BytesOfBlock(bad), &tiff)) {
                    ReadDirectory(tiff, tiff.first, &ignored, &whole);
                }
            }
        }
    }
}

TEST_F(MetadataFile, LoopsOfDirectoriesEnd) {
    // The entry of EXIF points to its own directory, twice.
    const std::string entry = "\x69\x87\4\0\1\0\0\0\x08\0\0\0"s;
    const std::string block = "II*\0\x08\0\0\0\2\0"s + entry + entry + "\0\0\0\0"s;
    TiffSource tiff;
    TiffDirectory directory;
    bool whole = true;
    ASSERT_TRUE(OpenTiff(BytesOfBlock(block), &tiff));
    ReadDirectory(tiff, tiff.first, &directory, &whole);
    EXPECT_FALSE(whole);
}

TEST_F(MetadataFile, OffsetsInMakersNotesMoveAlong) {
    // A directory of one text of eight bytes, whose offset follows.
    const auto note = [](const std::string &head, bool bigEndian, uint64_t offset) {
        return head + NumberBytes(1, 2, bigEndian) + NumberBytes(7, 2, bigEndian) +
               NumberBytes(2, 2, bigEndian) + NumberBytes(8, 4, bigEndian) +
               NumberBytes(offset, 4, bigEndian) + "\0\0\0\0firmware"s;
    };
    const struct {
        std::string head;
        bool bigEndian;
        uint64_t offset, moved;
    } cases[] = {
        {"", false, 118, 1018},
        {"", true, 118, 1018},
        {"SONY DSC \0\0\0"s, false, 130, 1030},
        {"AOC\0\0\0"s, true, 124, 1024},
        {"", false, 18, 18},                     // counts from the note itself
        {"", false, 119, 119},                   // leads out of the note
        {"", false, 110, 110},                   // leads into the table
        {"a text, perhaps!!", false, 135, 135},  // nowhere a directory may begin
    };
    for (const auto &test : cases) {
        std::string moved = note(test.head, test.bigEndian, test.offset);
        MoveMakerNote(&moved, 100, 1000);
        EXPECT_EQ(moved, note(test.head, test.bigEndian, test.moved)) << &test - cases;
    }
}

// Each file is made from the one before, so that anything lost stays lost.
TEST_F(MetadataFile, GoesFromFormatToFormat) {
    const std::string xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'/>";
    const std::string resources = "8BIM\x04\x0B\0\0\0\0\0\4http"s;
    const std::string iptc = "\x1C\2\x78\0\4text"s;
    const std::string profile = std::string(16, 'p') + "RGB " + std::string(90000, 'q');
    WriteJpeg("a.jpg", {{kJpegApp0, "JFIF\0\1\1\1\1\x2C\1\x2C\0\0"s},
                        {kJpegApp1, "Exif\0\0"s + PackBlock(SomeDirectory(), nullptr, true)},
                        {kJpegApp1, "http://ns.adobe.com/xap/1.0/\0"s + xmp},
                        {kJpegApp2, "ICC_PROFILE\0\2\2"s + profile.substr(60000)},
                        {kJpegApp2, "ICC_PROFILE\0\1\2"s + profile.substr(0, 60000)},
                        {kJpegApp13, "Photoshop 3.0\0"s + WithIptc(resources, iptc)}});
    const std::string files[] = {"a.jpg", "b.png",  "c.png", "d.webp", "e.webp", "f.tif",
                                 "g.tif", "h.webp", "i.jpg", "j.tif",  "k.png",  "l.jpg"};
    for (size_t i = 1; i < std::size(files); ++i) {
        EXPECT_EQ(Carry(files[i - 1], files[i]), "") << files[i];
    }
    const std::string webp = ContentsOf(folder / "d.webp");
    const size_t exif = webp.find("EXIF", 12);
    EXPECT_EQ(webp.find("EXIF", exif + 4), std::string::npos) << "the library's own is left behind it";
    std::string listed, readXmp, readProfile, photoshop, readIptc;
    for (const JpegSegment &segment : SegmentsOf("l.jpg")) {
        if (segment.bytes.starts_with("Exif")) {
            TiffSource tiff;
            TiffDirectory directory;
            bool whole = false;
            ASSERT_TRUE(OpenTiff(BytesOfBlock(std::string_view(segment.bytes).substr(6)), &tiff));
            ASSERT_TRUE(ReadDirectory(tiff, tiff.first, &directory, &whole));
            for (const uint16_t added : {kTagXResolution, kTagYResolution, kTagResolutionUnit}) {
                EXPECT_NE(FindEntry(directory, added), nullptr) << "WebP has no other place for it";
                RemoveEntry(&directory, added);
            }
            listed = Listed(directory);
        } else if (segment.bytes.starts_with("http")) {
            readXmp = segment.bytes.substr(29);
        } else if (segment.bytes.starts_with("ICC")) {
            readProfile += segment.bytes.substr(14);
        } else if (segment.bytes.starts_with("Photoshop")) {
            photoshop = segment.bytes.substr(14);
        } else if (segment.bytes.starts_with("JFIF")) {
            EXPECT_EQ(segment.bytes, "JFIF\0\1\1\1\1\x2C\1\x2C\0\0"s);
        }
    }
    EXPECT_EQ(listed, Listed(SomeDirectory()));
    EXPECT_EQ(readXmp, xmp);
    EXPECT_EQ(readProfile, profile);
    EXPECT_TRUE(TakeIptcOutOf(&photoshop, &readIptc));
    EXPECT_EQ(photoshop, resources);
    EXPECT_EQ(readIptc, iptc);
}

// Pixels stay as they were stored, and a property turns them.
TEST_F(MetadataFile, HeifTakesAllBlocksAndGivesThemBack) {
    if (!HasHeif()) {
        GTEST_SKIP() << "libvips has no module for it";
    }
    const std::string exif = PackBlock(SomeDirectory(), nullptr, true);
    const std::string xmp = "<x:xmpmeta xmlns:x='adobe:ns:meta/'/>";
    const std::string profile = std::string(16, 'p') + "RGB " + std::string(9000, 'q');
    WriteJpeg("a.jpg", {{kJpegApp1, "Exif\0\0"s + exif},
                        {kJpegApp1, "http://ns.adobe.com/xap/1.0/\0"s + xmp},
                        {kJpegApp2, "ICC_PROFILE\0\1\1"s + profile}});
    for (const std::string name : {"b.heic", "b.avif"}) {
        SCOPED_TRACE(name);
        EXPECT_EQ(Carry("a.jpg", name), "");
        HeifMetadata read;
        {
            ByteFile file;
            ASSERT_TRUE(OpenForReading(Path(name), &file) && ReadHeifMetadata(file, &read));
        }
        EXPECT_EQ(read.exif, exif);
        EXPECT_EQ(read.xmp, xmp);
        EXPECT_EQ(read.profile, profile);
        const OwnedObject<VipsImage> image(vips_image_new_from_file(Path(name).c_str(), nullptr));
        EXPECT_EQ(vips_image_get_width(image.get()), 18) << "it is not turned";
        EXPECT_NE(ContentsOf(folder / name).find("irot\3"s), std::string::npos)
            << "three quarters to the left";
        EXPECT_EQ(BytesOf(image.get()).size(), 24u * 18 * 3) << TakeVipsError();
        // What an opened picture tells stays when its file is closed.
        Picture picture;
        EXPECT_FALSE(OpenPicture(Path(name), &picture));
        picture.unread.reset();
        const void *told = nullptr;
        size_t size = 0;
        ASSERT_EQ(vips_image_get_blob(picture.metadata.get(), VIPS_META_EXIF_NAME, &told, &size), 0);
        EXPECT_TRUE(std::string_view(static_cast<const char *>(told), size).ends_with(exif));
        // What is read turned already does not say so again.
        fs::remove(folder / "c.tif");
        EXPECT_EQ(Carry(name, "c.tif"), "");
        const TiffDirectory directory = DirectoryOf("c.tif");
        EXPECT_EQ(NumberOf(directory, kTagOrientation, 0), 1u);
        EXPECT_EQ(FindEntry(directory, 271)->bytes, "Acme\0"s);
        EXPECT_EQ(FindEntry(directory, kTagXMP)->bytes, xmp);
        EXPECT_EQ(FindEntry(directory, kTagProfile)->bytes, profile);
        // A file that ends anywhere, or is wrong anywhere, is read without harm.
        const std::string whole = ContentsOf(folder / name);
        for (size_t i = 0; i < whole.size(); i += i < 800 ? 1 : 97) {
            std::string bad = whole;
            bad[i] = static_cast<char>(bad[i] ^ 0x88);
            for (const std::string &bytes : {whole.substr(0, i), bad}) {
                WriteBytes("bad", bytes);
                ByteFile damaged;
                HeifMetadata ignored;
                ASSERT_TRUE(OpenForPatching(Path("bad"), &damaged));
                ReadHeifMetadata(damaged, &ignored);
                AddHeifMetadata(read, &damaged);
            }
        }
    }
    // Places of a thousand items, each in 65535 parts of no bytes.
    const std::string places = "\0\0\0\0\0\0\3\xE8"s + [] {
        std::string items;
        for (int i = 0; i < 1000; ++i) {
            items += "\0\1\0\0\xFF\xFF"s;
        }
        return items;
    }();
    const std::string boxes = NumberBytes(8 + places.size(), 4, true) + "iloc" + places;
    const std::string entry = "\0\0\0\x15infe\2\0\0\0\0\1\0\0Exif\0"s;
    const std::string list = NumberBytes(14 + entry.size(), 4, true) + "iinf\0\0\0\0\0\1"s + entry;
    WriteBytes("parts.heic",
               NumberBytes(12 + boxes.size() + list.size(), 4, true) + "meta\0\0\0\0"s + boxes + list);
    rusage before = {}, after = {};
    getrusage(RUSAGE_SELF, &before);
    ByteFile parts;
    HeifMetadata none;
    EXPECT_TRUE(OpenForReading(Path("parts.heic"), &parts) && ReadHeifMetadata(parts, &none));
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 64 << 10);
    WriteJpeg("m.jpg",
              {{kJpegApp1, "Exif\0\0"s + PackBlock({{NumbersEntry(kTagOrientation, kTiffShort, {2})}},
                                                   nullptr, false)}});
    EXPECT_EQ(Carry("m.jpg", "m.heic"), " (it keeps no mirroring)");
}

TEST_F(MetadataFile, DamageStopsNothing) {
    const std::string block = PackBlock(SomeDirectory(), nullptr, false);
    const struct {
        std::string exif;
        const char *intoTiff;
    } cases[] = {
        {"no TIFF at all", " (it keeps no EXIF data)"},
        {block.substr(0, 12), " (it keeps no EXIF data)"},
        {block.substr(0, block.size() - 30), " (it keeps no damaged EXIF data)"},
        {block.substr(0, 8) + "\xFF\xFF" + block.substr(10), " (it keeps no damaged EXIF data)"},
    };
    for (const auto &test : cases) {
        WriteJpeg("in.jpg", {{kJpegApp1, "Exif\0\0"s + test.exif}});
        for (const char *file : {"out.jpg", "out.png", "out.webp"}) {
            EXPECT_EQ(Carry("in.jpg", file), "");
            EXPECT_NE(ContentsOf(folder / file).find(test.exif), std::string::npos) << file;
            fs::remove(folder / file);
        }
        EXPECT_EQ(Carry("in.jpg", "out.tif"), test.intoTiff) << &test - cases;
        fs::remove(folder / "out.tif");
    }
    WriteBytes("cut.jpg", "\xFF\xD8\xFF\xE1\xFF\xFF"s);
    EXPECT_EQ(Carry("cut.jpg", "out.png"), " (it keeps no damaged metadata)");
}

TEST_F(MetadataFile, LargePacketsAreExtendedInJpegAndWholeElsewhere) {
    const std::string head =
        "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
        "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description rdf:about='' "
        "xmlns:dc='http://purl.org/dc/elements/1.1/' dc:source='";
    const std::string text(200000, 's');
    WritePixels("a.tif");
    ByteFile file;
    TiffDirectory directory = DirectoryOf("a.tif");
    ASSERT_TRUE(OpenForPatching(Path("a.tif"), &file));
    directory.entries.push_back(BytesEntry(kTagXMP, kTiffByte, head + text + "'/></rdf:RDF></x:xmpmeta>"));
    // Also more than a JPEG's EXIF block can hold.
    directory.entries.push_back(TextEntry(kTagImageDescription, text));
    directory.entries.push_back(TextEntry(kTagArtist, "Me"));
    ASSERT_TRUE(AppendDirectory(directory, {}, 4, &file));
    EXPECT_EQ(Carry("a.tif", "b.jpg"), " (it keeps no EXIF beyond 64 KB)");
    EXPECT_EQ(Carry("b.jpg", "c.tif"), "");
    const TiffDirectory read = DirectoryOf("c.tif");
    ASSERT_NE(FindEntry(read, kTagXMP), nullptr);
    EXPECT_NE(FindEntry(read, kTagXMP)->bytes.find(text), std::string::npos);
    EXPECT_EQ(FindEntry(read, kTagXMP)->bytes.find("HasExtendedXMP"), std::string::npos);
    EXPECT_NE(FindEntry(read, kTagArtist), nullptr);
    EXPECT_EQ(Carry("a.tif", "d.tif"), "");
    EXPECT_EQ(FindEntry(DirectoryOf("d.tif"), kTagImageDescription)->count, text.size() + 1);
}

TEST_F(MetadataFile, PngsChunksStayInOrder) {
    WritePixels("in.png");
    ByteFile file;
    std::vector<PngChunk> chunks;
    uint64_t headBytes = 0;
    size_t headChunks = 0;
    bool whole = false;
    ASSERT_TRUE(OpenForPatching(Path("in.png"), &file) &&
                ReadPngChunks(file, &chunks, &headBytes, &headChunks, &whole));
    const std::string block = PackBlock(SomeDirectory(), nullptr, false);
    for (const PngChunk &chunk : {PngChunk{"tEXt", "Title\0a title"s},
                                  {"eXIf", block},
                                  {"eXIf", block},
                                  {"gAMA", "\0\0\xB1\x8F"s},
                                  {"vpAg", "a"},
                                  {"xyZW", "not to be copied"},
                                  {"zTXt", "Comment\0\0"s + Deflated("packed")}}) {
        chunks.push_back(chunk);
    }
    ASSERT_TRUE(ReplaceHead(&file, headBytes, PackPngHead(chunks)));
    EXPECT_EQ(Carry("in.png", "out.png"), "");
    ByteFile out;
    chunks.clear();
    ASSERT_TRUE(OpenForReading(Path("out.png"), &out) &&
                ReadPngChunks(out, &chunks, &headBytes, &headChunks, &whole) && whole);
    std::string types;
    for (const PngChunk &chunk : chunks) {
        types += chunk.type + " ";
    }
    EXPECT_EQ(types, "IHDR gAMA pHYs tEXt eXIf vpAg zTXt ");
    EXPECT_EQ(Carry("in.png", "out.jpg"), " (it keeps no texts)");
    EXPECT_EQ(SegmentsOf("out.jpg").at(2).bytes, "packed");
    // Some programs count the zero behind a comment.
    WriteJpeg("c.jpg", {{kJpegComment, "said\0"s}});
    EXPECT_EQ(Carry("c.jpg", "c.png"), "");
    EXPECT_EQ(Carry("c.png", "d.jpg"), "");
    const std::vector<JpegSegment> segments = SegmentsOf("d.jpg");
    EXPECT_TRUE(std::any_of(segments.begin(), segments.end(),
                            [](const JpegSegment &segment) { return segment.bytes == "said"; }));
}

TEST_F(MetadataFile, HeadsGrowAndShrinkInPlace) {
    const std::string tail = [] {
        std::string text;
        for (int i = 0; text.size() < 2'500'000; ++i) {
            text += std::to_string(i);
        }
        return text;
    }();
    for (const size_t length : {size_t{0}, size_t{5}, size_t{100}, size_t{1'500'000}}) {
        WriteBytes("file", std::string(100, 'h') + tail);
        ByteFile file;
        ASSERT_TRUE(OpenForPatching(Path("file"), &file));
        ASSERT_TRUE(ReplaceHead(&file, 100, std::string(length, 'n')));
        EXPECT_TRUE(ContentsOf(folder / "file") == std::string(length, 'n') + tail) << length;
    }
}

// A gigabyte of pixels, none of which is written.
TEST_F(MetadataFile, LargeTiffsTakeNoMemory) {
    for (const char *name : {"in.tif", "out.tif"}) {
        WritePixels(name);
        TiffDirectory directory = DirectoryOf(name);
        directory.entries.push_back(TextEntry(kTagArtist, name));
        fs::resize_file(folder / name, 1 << 30);
        ByteFile file;
        ASSERT_TRUE(OpenForPatching(Path(name), &file) && AppendDirectory(directory, {}, 4, &file));
    }
    rusage before = {}, after = {};
    getrusage(RUSAGE_SELF, &before);
    std::vector<std::string> lost;
    EXPECT_FALSE(CarryMetadata({Path("in.tif"), Path("out.tif"), "out.tif"}, &lost));
    getrusage(RUSAGE_SELF, &after);
    EXPECT_EQ(FindEntry(DirectoryOf("out.tif"), kTagArtist)->bytes, "in.tif\0"s);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 16 << 10);
}

}  // namespace
