// The module as a guest: its folder, copied to another place, in a host that knows nothing of this project.
#include <cstring>
#include <fstream>
#include <iterator>
#include <sstream>

#include "host/picture/picture.h"
#include "tests/host/program_fixture.h"

namespace {

namespace fs = std::filesystem;

constexpr int kWidth = 40;
constexpr int kHeight = 30;

class ForeignHost : public Program {
  protected:
    ForeignHost() {
        const fs::path built = fs::path(HYMEDIAN_PROGRAM).parent_path();
        fs::copy(built / "HybridMedian.plugin", module.parent_path());
    }

    // The host's line, without what it says of its pixels if they are `pixels`, or as before after a failure.
    std::string Run(const std::string &switches, const std::string &pixels) {
        std::istringstream words("in=in.raw out=out.raw " + switches);
        std::vector<std::string> arguments(std::istream_iterator<std::string>(words), {});
        arguments.insert(arguments.begin(), module);
        executable = FOREIGN_HOST;
        if (bare) {
            // Of all variables only the one that keeps the developer's own preferences out of this.
            const std::string preferences = "HYMEDIAN_PREFERENCES=" + (output / "preferences").string();
            arguments.insert(arguments.begin(), {"-i", preferences, executable});
            executable = "/usr/bin/env";
        }
        const Ended ended = Wait(Start(arguments));
        std::istringstream line(ended.out);
        std::string word, result, digest, rest;
        line >> word >> result >> word >> digest;
        std::getline(line, rest);
        EXPECT_EQ(ended.status, 0) << ended.out;
        EXPECT_EQ(ended.err, "");
        EXPECT_EQ(digest[0] == '=', result != "0") << ended.out;
        EXPECT_TRUE(result != "0" || ContentsOf(folder / "out.raw") == pixels) << "other pixels";
        return result + rest;
    }

    // What hymedian makes of a picture of noise, which is written as the host's picture, too.
    std::string MakePicture(int bands, VipsBandFormat format, VipsInterpretation interpretation,
                            const std::string &radius = "2") {
        WriteNoise("in.tif", kWidth, kHeight, bands, format, interpretation);
        executable = HYMEDIAN_PROGRAM;
        EXPECT_EQ(Wait(Start({"in.tif", "-o", "out.tif", "-f", "-r", radius})).status, 0);
        WriteBytes("in.raw", SamplesOf("in.tif"));
        return SamplesOf("out.tif");
    }

    // Puts another program in the place of the dialog's.
    void ReplaceDialog(const fs::path &program) const {
        fs::copy_file(program, module.parent_path() / "hymedian-dialog",
                      fs::copy_options::overwrite_existing);
    }

    const fs::path module = output / "elsewhere" / "HybridMedian.so";
    bool bare = false;  // whether the host gets no environment

  private:
    // As the filter is given them: 16-bit samples go from 0 to 32768.
    std::string SamplesOf(const std::string &file) {
        Picture picture;
        EXPECT_FALSE(OpenPicture(Path(file), &picture));
        EXPECT_FALSE(ReadPixels(&picture, {}));
        const Document &document = picture.document;
        std::string samples(reinterpret_cast<const char *>(document.source.get()),
                            static_cast<size_t>(PixelBytes(document)));
        for (size_t i = 0; document.depth == 16 && i < samples.size(); i += 2) {
            uint16_t sample;
            std::memcpy(&sample, &samples[i], sizeof sample);
            sample = static_cast<uint16_t>((sample * 65536u + 65535) / 131070);
            std::memcpy(&samples[i], &sample, sizeof sample);
        }
        return samples;
    }
};

TEST_F(ForeignHost, GetsThePixelsThatHymedianMakes) {
    const struct {
        int bands;
        VipsBandFormat format;
        VipsInterpretation interpretation;
        const char *switches;
    } pictures[] = {
        {1, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W, "mode=1 planes=1 "},
        {1, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_GREY16, "mode=10 planes=1 "},
        {3, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_RGB16, "mode=11 planes=3 "},
        {3, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_sRGB, "mode=3 planes=3 "},
    };
    const std::string ways[] = {"",
                                "advance=0 pad=5 handles=6 info=1 depth=0",
                                "handles=0 buffers=0 progress=0 abort=0 ask=1 thread=1",
                                "advance=0 between=1 mask=255 nowhere=1 runs=3 stale=2 space=9000",
                                "scripting=0",
                                "scripting=2 stale=3"};
    for (const auto &[bands, format, interpretation, switches] : pictures) {
        const std::string filtered = MakePicture(bands, format, interpretation);
        for (const std::string &way : ways) {
            SCOPED_TRACE(switches + way);
            const bool deep = format == VIPS_FORMAT_USHORT && way.find("depth=0") != std::string::npos;
            EXPECT_EQ(Run(switches + way + (deep ? " depth=16" : ""), filtered).substr(0, 11), "0 radius 2 ");
        }
    }
}

TEST_F(ForeignHost, GetsTheRightAnswer) {
    const fs::path preferences = output / "preferences",
                   resources = module.parent_path() / "HybridMedian.rsrc";
    const std::string filtered = MakePicture(3, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_sRGB);
    fs::remove_all(preferences);
    // Nobody is there to answer a dialog, which the first "last filter" needs for want of an earlier one.
    EXPECT_EQ(Run("scripting=0 parameters=9", filtered), "-128 radius 2 parameters 9");
    fs::remove_all(preferences);
    EXPECT_EQ(Run("", filtered), "0 radius 2 parameters -1");
    EXPECT_EQ(PermissionsOf(preferences), 0700u);
    const struct {
        const char *switches, *line;
    } cases[] = {
        // What the host keeps is measured, made and freed by the host alone.
        {"ask=1", "0 radius 2 parameters 4"},
        {"ask=2 runs=2 handles=2", "0 radius 2 parameters 4"},
        {"ask=1 parameters=2", "0 radius 2 parameters 4"},
        {"ask=1 parameters=0 handles=6", "0 radius 2 parameters 4"},
        {"ask=1 parameters=3 handles=3", "0 radius 2 parameters 3"},
        {"ask=1 parameters=2 handles=0", "0 radius 2 parameters 2"},
        {"ask=1 parameters=100", "0 radius 2 parameters 100"},
        {"stale=1", "0 radius 2 parameters -1"},
        // The last radius is repeated without Parameters and scripting, and the dialog asked for otherwise.
        {"scripting=0 radius=-1 runs=2", "0 radius -1 parameters -1"},
        {"scripting=0 radius=-1 runs=2 ask=1", "-128 radius -1 parameters 4"},
        {"scripting=2 ask=1 handles=0", "-128 radius 2 parameters -1"},
        {"version=1 ask=1", "-128 radius 2 parameters 4"},
        {"reads=17", "0 radius 2 parameters -1"},
        {"writes=15", "0 radius 2 parameters -1"},
        {"play=1", "-128 radius 2 parameters -1"},
        {"play=2", "0 radius 2 parameters -1"},
        {"radius=-1", "0 radius 2 parameters -1"},
        {"radius=5", "0 radius 2 parameters -1"},
        {"abortat=1", "-128 radius 2 parameters -1"},
        {"abortat=90 advance=0", "-128 radius 2 parameters -1"},
        // What is not delivered as it was asked for.
        {"missing=1", "-30100 radius 2 parameters -1"},
        {"missing=115 advance=0", "-30100 radius 2 parameters -1"},
        {"mask=1 unmasked=1", "-30100 radius 2 parameters -1"},
        {"fewer=1 pad=40", "-30100 radius 2 parameters -1"},
        {"fewer=-1", "-30100 radius 2 parameters -1"},
        {"shift=1 once=5", "-30100 radius 2 parameters -1"},
        {"shift=-1 advance=0", "-30100 radius 2 parameters -1"},
        {"bottom=31", "-30100 radius 2 parameters -1"},
        {"left=-1", "-30100 radius 2 parameters -1"},
    };
    for (const auto &[switches, line] : cases) {
        EXPECT_EQ(Run(switches, filtered), line) << switches;
    }
    bare = true;
    EXPECT_EQ(Run("space=9000", filtered), "0 radius 2 parameters -1");
    EXPECT_EQ(Run("play=1", filtered), "-128 radius 2 parameters -1");
    // Without its resources, too, the module does what needs no dialog.
    for (const char *contents : {"damaged", ""}) {
        std::ofstream(resources) << contents;
        EXPECT_EQ(Run("scripting=0", filtered).substr(0, 2), "0 ");
        EXPECT_EQ(Run("play=1", filtered).substr(0, 5), "-128 ");
    }
    fs::remove(resources);
    EXPECT_EQ(Run("play=1", filtered).substr(0, 5), "-128 ");
}

TEST_F(ForeignHost, ShowsDialogsThroughTheProgramBesideTheModule) {
    const std::string filtered = MakePicture(3, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_sRGB, "3");
    ReplaceDialog(HYMEDIAN_ANSWERING_DIALOG);
    setenv("HYMEDIAN_ANSWERS", Path("answers").c_str(), 1);
    const struct {
        const char *switches, *answers, *line;
    } cases[] = {
        {"play=1", "3", "0 radius 3 parameters -1"},
        {"play=1 runs=3 thread=1 stale=2", "513", "0 radius 3 parameters -1"},
        {"play=1 handles=6 advance=0 between=1 space=9000", "33", "0 radius 3 parameters -1"},
        {"play=1", "c", "-128 radius 2 parameters -1"},
        {"scripting=0 ask=1", "3", "0 radius 2 parameters 4"},
        {"scripting=0 ask=2 runs=4 handles=0", "63", "0 radius 2 parameters -1"},
    };
    for (const auto &[switches, answers, line] : cases) {
        WriteBytes("answers", answers);
        // Of a module that is still there, sanitizers can tell what the dialog keeps by design.
        EXPECT_EQ(Run(std::string("unload=0 ") + switches, filtered), line) << switches;
        EXPECT_EQ(ContentsOf(Path("answers")), "") << switches;
    }
    // One that dies at once, and one that is none.
    for (const std::string &program : {std::string("/bin/true"), Path("in.raw")}) {
        ReplaceDialog(program);
        EXPECT_EQ(Run("play=1", filtered), "-128 radius 2 parameters -1") << program;
    }
}

// Names and applications of the host's own are not the module's. Dialogs are wanted in vain here.
TEST_F(ForeignHost, KeepsItsLibraries) {
    const std::string filtered = MakePicture(3, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_sRGB);
    std::istringstream libraries(LIBRARIES);
    for (std::string library; libraries >> library;) {
        for (const char *thread : {" thread=0", " thread=1"}) {
            SCOPED_TRACE(library + thread);
            EXPECT_EQ(Run("library=" + library + thread, filtered), "0 radius 2 parameters -1");
            EXPECT_EQ(Run("play=1 library=" + library + thread, filtered), "-128 radius 2 parameters -1");
        }
    }
}

}  // namespace
