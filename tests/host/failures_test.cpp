// Files that the program cannot use: one sentence says so, and the attempt leaves nothing behind.
#include <algorithm>

#include "tests/host/program_fixture.h"

namespace {

namespace fs = std::filesystem;

TEST_F(Program, FailsWithOneSentenceOverPicturesThatCannotBeRead) {
    WriteNoise("float-lab.tif", 40, 30, 3, VIPS_FORMAT_FLOAT, VIPS_INTERPRETATION_LAB);
    WriteNoise("uint.tif", 40, 30, 1, VIPS_FORMAT_UINT, VIPS_INTERPRETATION_B_W);
    WriteNoise("pages.tif[page-height=15]", 40, 30, 3);
    for (const std::string name : {"whole.jpg", "good.png", "good.tif"}) {
        WriteNoise(name, 40, 30, 3);
        const std::string whole = ContentsOf(folder / name);
        WriteBytes("cut-" + name, whole.substr(0, whole.size() * 2 / 3));
    }
    const std::string good = ContentsOf(folder / "good.png");
    // A PNG whose header gives a width of 0.
    std::string zero = good;
    std::fill_n(zero.begin() + 16, 4, '\0');
    WriteBytes("zero.png", zero);
    // Announces two animation frames directly after the header.
    std::string animated = good;
    animated.insert(33, std::string("\0\0\0\x08"
                                    "acTL\0\0\0\2\0\0\0\0\xF3\x8D\x93\x70",
                                    20));
    WriteBytes("animated.png", animated);
    std::string checksum = good;
    checksum[29] ^= 1;
    WriteBytes("checksum.png", checksum);
    WriteBytes("empty.png", "");
    WriteBytes("text.png", "not a picture");
    // Kinds that are known, but not read.
    WriteBytes("a.cr2", std::string("II*\0\x10\0\0\0CR\2\0", 12));
    WriteBytes("text.ppm", "P3\n1 1\n255\n1 2 3\n");
    WriteBytes("cut.pgm", "P5 # a comment\n9 9 255\nshort");
    WriteBytes("huge.pam", "P7\nWIDTH 99999999\nHEIGHT 99999999\nDEPTH 4\nMAXVAL 255\nENDHDR\nx");
    WriteBytes("a.jxl", "\xFF\x0A and more");
    WriteBytes("a.psd", "8BPS and so on");
    WriteBytes("a.heic", std::string("\0\0\0\x18"
                                     "ftypheic",
                                     12));
    WriteBytes("twelve.tif", std::string("II*\0\x08\0\0\0\1\0\2\1\3\0\1\0\0\0\x0C\0\0\0\0\0\0\0", 26));
    WriteBytes("raw.dng", std::string("II*\0\x08\0\0\0\1\0\6\1\3\0\1\0\0\0\x23\x80\0\0\0\0\0\0", 26));
    fs::create_directory(folder / "folder.png");
    ExpectRefusals({
        {"missing.png -o new.png", 1, "missing.png: no such file"},
        {"folder.png -o new.png", 1, "folder.png: this is a folder"},
        {"empty.png -o new.png", 1, "empty.png"},
        {"text.png -o new.png", 1, "text.png"},
        {"zero.png -o new.png", 1, "zero.png"},
        {"checksum.png -o new.png", 1, "checksum.png: cannot be read: its header is damaged"},
        {"cut-good.png -o new.png", 1, "cut-good.png: cannot be read: its pixels are damaged"},
        {"cut-good.tif -o new.tif", 1, "cut-good.tif"},
        {"cut-whole.jpg -o new.png", 1, "cut-whole.jpg"},
        {"float-lab.tif -o new.tif", 1, "its samples are floats; convert it to 16 bits"},
        {"uint.tif -o new.tif", 1, "its samples are 32-bit integers"},
        {"pages.tif -o new.png", 1,
         "pages.tif: it has 2 pages, which only a .tif holds; choose one with --page"},
        {"pages.tif -o new.tif --page 2-3", 2, "pages.tif: it has only 2 pages"},
        {"good.png -o new.png --page 2", 2, "good.png: it has only one page"},
        {"a.cr2 -o new.tif", 1, "a.cr2: this is a camera's raw picture (CR2); develop"},
        {"text.ppm -o new.tif", 1, "only binary ones"},
        {"cut.pgm -o new.tif", 1, "cut short"},
        {"huge.pam -o new.tif", 1, "damaged"},
        {"a.psd -o new.tif", 1, "a.psd: this is a layered document (PSD); convert"},
        {"a.heic -o new.tif", 1, HasHeif() ? "a.heic: cannot be read: it is damaged" : "module for them"},
        {"a.jxl -o new.tif", 1, "a JPEG XL picture, whose loader"},
        {"twelve.tif -o new.tif", 1, "12 bits; convert it to 8 bits, 16 bits or 32-bit floats"},
        {"raw.dng -o new.tif", 1, "such as DNG"},
        {"animated.png -o new.png", 1, "animated.png: it has several pages"},
    });
}

TEST_F(Program, FailsWithOneSentenceOverFormatsThatCannotHoldThePicture) {
    WriteNoise("good.png", 40, 30, 3);
    WriteNoise("16.tif", 40, 30, 3, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_RGB16);
    WriteNoise("cmyk.tif", 40, 30, 4, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_CMYK);
    WriteNoise("lab.tif", 40, 30, 3, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_LAB);
    ExpectRefusals({
        {"good.png -o new.gif", 2, "new.gif"},
        {"good.png -o new.png --compare new.jpg", 2, "new.jpg"},
        {"cmyk.tif -o new.png", 1, "CMYK"},
        {"lab.tif -o new.jpg", 1, "choose .tif"},
        {"16.tif -o new.jpg", 1, "16.tif"},
    });
}

TEST_F(Program, FailsWithOneSentenceOverPlacesOfOutputs) {
    for (const char *name : {"good.png", "other.png", "third.png"}) {
        WriteNoise(name, 40, 30, 3);
    }
    WriteBytes("good.json", "{}");
    fs::create_directory(folder / "folder.png");
    ExpectRefusals({
        {"good.png -o other.png", 1, "other.png: exists already"},
        {"good.png -o new.png --record good.json", 1, "good.json: exists already"},
        {"good.png -o new.png --compare other.png", 1, "other.png: exists already"},
        {"good.png -o nowhere/new.png", 1, "nowhere"},
        {"good.png -o nowhere/", 2, "nowhere/: there is no such folder"},
        {"good.png other.png -o nowhere", 2, "nowhere"},
        {"good.png other.png -o third.png", 2, "third.png"},
        {"good.png -o /proc/new.png", 1, "/proc/new.png"},
        {"good.png -o new.png --compare new.png", 2, "new.png: two outputs"},
        {"good.png folder.png/../good.png -o folder.png", 2, "folder.png/good.png"},
        {"good.png other.png -o folder.png --record new.json", 2, "--record"},
        // Would overwrite an input.
        {"good.png -o good.png -f", 2, "--in-place"},
        {"good.png -o new.png --record good.png -f", 2, "good.png"},
        {"good.png ./good.png --in-place", 2, "./good.png"},
    });
}

TEST_F(Program, FailsWithOneSentenceOverActionsAndMasks) {
    WriteNoise("good.png", 40, 30, 3);
    WriteNoise("small-mask.png", 40, 29, 1, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W);
    WriteBytes("bad.json", "{");
    ExpectRefusals({
        {"good.png -o new.png --play bad.json", 1, "bad.json"},
        {"good.png -o new.png --play missing.json", 1, "missing.json: cannot be read: No such file"},
        {"good.png -o new.png --mask small-mask.png", 1, "small-mask.png: the mask is 40 x 29"},
        {"good.png -o new.png --mask good.png", 1, "good.png: a mask must be grey"},
        {"good.png -o new.png --mask missing.png", 1, "missing.png"},
    });
}

TEST_F(Program, FailsWithOneSentenceOverPlugins) {
    WriteNoise("good.png", 40, 30, 3);
    const fs::path build = fs::path(HYMEDIAN_PROGRAM).parent_path();
    const fs::path plugin = build / "HybridMedian.plugin";
    // Resources that are missing, truncated, and without the grey and RGB 8 modes; then a module of another
    // kind.
    for (const char *name : {"bare", "cut", "modes"}) {
        fs::create_directory(folder / name);
        fs::create_symlink(plugin / "HybridMedian.so", folder / name / "HybridMedian.so");
    }
    std::string resources = ContentsOf(plugin / "HybridMedian.rsrc");
    WriteBytes("cut/HybridMedian.rsrc", resources.substr(0, resources.size() - 5));
    resources[resources.find("mode") + 12] = 0;
    WriteBytes("modes/HybridMedian.rsrc", resources);
    fs::create_directory(folder / "no-main");
    fs::copy(HYMEDIAN_NO_MAIN, folder / "no-main/HybridMedian.so");
    ExpectRefusals({
        {"good.png -o new.png --plugin nowhere", 1, "nowhere"},
        {"good.png -o new.png --plugin no-main", 1, "main"},
        {"good.png -o new.png --plugin bare", 1, "bare/HybridMedian.rsrc"},
        {"good.png -o new.png --plugin cut", 1, "cut/HybridMedian.rsrc"},
        {"good.png -o new.png --plugin modes", 1, "colour mode is RGB 8"},
    });
}

}  // namespace
