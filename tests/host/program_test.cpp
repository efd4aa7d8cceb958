// The program as its users meet it: exit status, one sentence, and what is in the folder afterwards.
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iterator>
#include <regex>
#include <thread>

#include "host/picture/picture.h"
#include "median/plain/plain_filter.h"
#include "tests/host/program_fixture.h"

namespace {

namespace fs = std::filesystem;

TEST_F(Program, FailsWithOneSentenceAndLeavesNothing) {
    WriteNoise("good.png", 40, 30, 3);
    WriteNoise("good.tif", 40, 30, 3);
    WriteNoise("16.tif", 40, 30, 3, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_RGB16);
    WriteNoise("cmyk.tif", 40, 30, 4, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_CMYK);
    WriteNoise("lab.tif", 40, 30, 3, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_LAB);
    WriteNoise("float-lab.tif", 40, 30, 3, VIPS_FORMAT_FLOAT, VIPS_INTERPRETATION_LAB);
    WriteNoise("uint.tif", 40, 30, 1, VIPS_FORMAT_UINT, VIPS_INTERPRETATION_B_W);
    WriteNoise("pages.tif[page-height=15]", 40, 30, 3);
    WriteNoise("other.png", 40, 30, 3);
    WriteNoise("whole.jpg", 40, 30, 3);
    for (const char *name : {"whole.jpg", "good.png", "good.tif"}) {
        const std::string whole = ContentsOf(folder / name);
        WriteBytes(std::string("cut-") + name, whole.substr(0, whole.size() * 2 / 3));
    }
    // A PNG whose width says 0.
    std::string zero = ContentsOf(folder / "good.png");
    std::fill_n(zero.begin() + 16, 4, '\0');
    WriteBytes("zero.png", zero);
    // Two frames of animation are announced right behind the header.
    std::string animated = ContentsOf(folder / "good.png");
    animated.insert(33, std::string("\0\0\0\x08"
                                    "acTL\0\0\0\2\0\0\0\0\xF3\x8D\x93\x70",
                                    20));
    WriteBytes("animated.png", animated);
    std::string checksum = ContentsOf(folder / "good.png");
    checksum[29] ^= 1;
    WriteBytes("checksum.png", checksum);
    WriteBytes("empty.png", "");
    WriteBytes("text.png", "not a picture");
    fs::create_directory(folder / "folder.png");
    fs::create_directory(folder / "no-main");
    WriteNoise("small-mask.png", 40, 29, 1, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W);
    WriteNoise("mask.png", 40, 30, 1, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W);
    WriteBytes("bad.json", "{");
    WriteBytes("good.json", R"({"event": "HyMd", "parameters": {"nRad": {"type": "float", "value": 2}}})");
    // Plug-ins whose resources are missing, cut short, and without the two modes of grey and RGB 8.
    const fs::path plugin = fs::path(HYMEDIAN_PROGRAM).parent_path() / "HybridMedian.plugin";
    for (const char *name : {"bare", "cut", "modes"}) {
        fs::create_directory(folder / name);
        fs::create_symlink(plugin / "HybridMedian.so", folder / name / "HybridMedian.so");
    }
    std::string resources = ContentsOf(plugin / "HybridMedian.rsrc");
    WriteBytes("cut/HybridMedian.rsrc", resources.substr(0, resources.size() - 5));
    resources[resources.find("mode") + 12] = 0;
    WriteBytes("modes/HybridMedian.rsrc", resources);
    fs::copy(fs::path(HYMEDIAN_PROGRAM).parent_path() / "libplatform.so", folder / "no-main/HybridMedian.so");

    const struct {
        std::vector<std::string> arguments;
        int status;
        const char *named;  // somewhere in the sentence
    } cases[] = {
        {{"missing.png", "-o", "new.png"}, 1, "missing.png: no such file"},
        {{"empty.png", "-o", "new.png"}, 1, "empty.png"},
        {{"text.png", "-o", "new.png"}, 1, "text.png"},
        {{"zero.png", "-o", "new.png"}, 1, "zero.png"},
        {{"checksum.png", "-o", "new.png"}, 1, "checksum.png: cannot be read: its header is damaged"},
        {{"cut-good.png", "-o", "new.png"}, 1, "cut-good.png: cannot be read: its pixels are damaged"},
        {{"cut-good.tif", "-o", "new.tif"}, 1, "cut-good.tif"},
        {{"cut-whole.jpg", "-o", "new.png"}, 1, "cut-whole.jpg"},
        {{"folder.png", "-o", "new.png"}, 1, "folder.png: this is a folder"},
        {{"cmyk.tif", "-o", "new.png"}, 1, "CMYK"},
        {{"lab.tif", "-o", "new.jpg"}, 1, "choose .tif"},
        {{"float-lab.tif", "-o", "new.tif"}, 1, "float"},
        {{"uint.tif", "-o", "new.tif"}, 1, "uint"},
        {{"pages.tif", "-o", "new.tif"}, 1, "pages.tif: it has several pages"},
        {{"animated.png", "-o", "new.png"}, 1, "animated.png: it has several pages"},
        {{"16.tif", "-o", "new.jpg"}, 1, "16.tif"},
        {{"good.png", "-o", "other.png"}, 1, "other.png: exists already"},
        {{"good.png", "-o", "good.png", "-f"}, 2, "--in-place"},
        {{"good.png", "-o", "nowhere/new.png"}, 1, "nowhere"},
        {{"good.png", "-o", "nowhere/"}, 2, "nowhere/: there is no such folder"},
        {{"good.png", "-o", "/proc/new.png"}, 1, "/proc/new.png"},
        {{"good.png", "-o", "new.gif"}, 2, "new.gif"},
        {{"good.png", "-o", "new.png", "--plugin", "nowhere"}, 1, "nowhere"},
        {{"good.png", "-o", "new.png", "--plugin", "no-main"}, 1, "main"},
        {{"good.png", "-o", "new.png", "-r", "0.5"}, 2, "radius"},
        {{"good.png", "-o", "new.png", "-r", "6.01"}, 2, "radius can be any number from 1 to 6;"},
        {{"good.png", "-o", "new.png", "-r", "5", "--record", "new.json"},
         2,
         "--record keeps a radius of at most 4"},
        {{"good.png", "-o", "new.png", "--dialog"}, 1, "Dialogs need"},
        {{"good.png", "-o", "new.png", "--dialog", "-r", "2"}, 2, "--dialog"},
        {{"good.png", "-o", "new.png", "-r", "nan"}, 2, "radius"},
        {{"good.png", "-o", "new.png", "-r", "wide"}, 2, "wide"},
        {{"good.png", "-o", "new.png", "--raduis", "2"}, 2, "--raduis"},
        {{"good.png"}, 2, "good.png"},
        {{}, 2, "--help"},
        {{"--worker"}, 2, "--worker"},
        {{"good.png", "-o", "new.png", "--plugin", "bare"}, 1, "bare/HybridMedian.rsrc"},
        {{"good.png", "-o", "new.png", "--plugin", "cut"}, 1, "cut/HybridMedian.rsrc"},
        {{"good.png", "-o", "new.png", "--plugin", "modes"}, 1, "colour mode is RGB 8"},
        {{"good.png", "-o", "new.png", "--play", "bad.json"}, 1, "bad.json"},
        {{"good.png", "-o", "new.png", "--play", "missing.json"},
         1,
         "missing.json: cannot be read: No such file"},
        {{"good.png", "-o", "new.png", "--play", "good.json", "-r", "2"}, 2, "--play"},
        {{"good.png", "-o", "new.png", "--record", "good.json"}, 1, "good.json: exists already"},
        {{"good.png", "-o", "new.png", "--compare", "other.png"}, 1, "other.png: exists already"},
        {{"good.png", "-o", "new.png", "--compare", "new.png"}, 2, "new.png: two outputs"},
        {{"good.png", "-o", "new.png", "--compare", "new.jpg"}, 2, "new.jpg"},
        {{"good.png", "-o", "new.png", "--record", "good.png", "-f"}, 2, "good.png"},
        {{"good.png", "-o", "new.png", "--select", "1,1,40,5"}, 2, "does not lie inside"},
        {{"good.png", "-o", "new.png", "--select", "1,1,0,5"}, 2, "1,1,0,5"},
        {{"good.png", "-o", "new.png", "--mask", "small-mask.png"}, 1, "small-mask.png: the mask is 40 x 29"},
        {{"good.png", "-o", "new.png", "--mask", "other.png"}, 1, "other.png: a mask must be grey"},
        {{"good.png", "-o", "new.png", "--mask", "missing.png"}, 1, "missing.png"},
        {{"good.png", "-o", "new.png", "--jobs", "0"}, 2, "jobs"},
        {{"good.png", "other.png", "-o", "nowhere"}, 2, "nowhere"},
        {{"good.png", "other.png", "-o", "mask.png"}, 2, "mask.png"},
        {{"good.png", "folder.png/../good.png", "-o", "folder.png"}, 2, "folder.png/good.png"},
        {{"good.png", "./good.png", "--in-place"}, 2, "./good.png"},
        {{"good.png", "other.png", "-o", "folder.png", "--record", "new.json"}, 2, "--record"},
    };
    const std::set<std::string> before = Names();
    for (const auto &test : cases) {
        const Ended ended = Wait(Start(test.arguments));
        SCOPED_TRACE(ended.err);
        EXPECT_EQ(ended.status, test.status);
        EXPECT_EQ(ended.out, "");
        EXPECT_EQ(ended.err.find("hymedian: "), 0U);
        EXPECT_EQ(std::count(ended.err.begin(), ended.err.end(), '\n'), 1);
        EXPECT_NE(ended.err.find(test.named), std::string::npos) << "expected: " << test.named;
        ASSERT_EQ(Names(), before);
    }
}

TEST_F(Program, WritesWhereItMay) {
    WriteNoise("in.png", 40, 30, 3);
    WriteNoise("old.png", 8, 8, 3);
    fs::create_symlink("in.png", folder / "link.png");
    const std::string noise = ContentsOf(folder / "in.png");

    const Ended plain = Wait(Start({"in.png", "-o", "out [x=1].png", "-r", "2"}));
    EXPECT_EQ(plain.status, 0) << plain.err;
    EXPECT_EQ(plain.out.find("in.png -> out [x=1].png: 40 x 30 RGB, 8 bits, radius 2, "), 0U) << plain.out;
    EXPECT_EQ(plain.err, "") << "a bar without a terminal";

    const std::string filtered = ContentsOf(folder / "out [x=1].png");
    const Ended forced = Wait(Start({"in.png", "-o", "old.png", "-f", "-q", "-r", "2"}));
    EXPECT_EQ(forced.out, "");
    EXPECT_EQ(ContentsOf(folder / "old.png"), filtered);
    EXPECT_EQ(ContentsOf(folder / "in.png"), noise);

    EXPECT_EQ(Wait(Start({"link.png", "--in-place", "-r", "2"})).status, 0);
    EXPECT_TRUE(fs::is_symlink(folder / "link.png"));
    EXPECT_EQ(ContentsOf(folder / "in.png"), filtered);
    EXPECT_EQ(FileCount(), 4U) << "something was left over";
}

unsigned PermissionsOf(const fs::path &file) {
    return static_cast<unsigned>(fs::status(file).permissions());
}

TEST_F(Program, OutputsGetTheInputsPermissionsAndTheRestIsTheOwners) {
    const std::pair<const char *, unsigned> inputs[] = {{"a.png", 0640}, {"b.png", 0604}};
    for (const auto &[name, permissions] : inputs) {
        WriteNoise(name, 40, 30, 3);
        fs::permissions(folder / name, static_cast<fs::perms>(permissions));
    }
    fs::create_directory(folder / "out");
    WriteBytes("out/a.png", "an earlier output");
    const std::vector<std::string> commands[] = {
        {"b.png", "-o", "new.png", "--compare", "both.png", "--record", "r.json"},
        {"a.png", "b.png", "-o", "out", "-f", "-j", "2"},
        {"a.png", "--in-place"},
    };
    for (const auto &command : commands) {
        EXPECT_EQ(Wait(Start(command)).status, 0);
    }
    const fs::path preferences = output / "preferences";
    const std::pair<fs::path, unsigned> expected[] = {
        {folder / "new.png", 0604},   {folder / "both.png", 0604},     {folder / "r.json", 0604},
        {folder / "out/a.png", 0640}, {folder / "out/b.png", 0604},    {folder / "a.png", 0640},
        {preferences, 0700},          {preferences / "WEMBpref", 0600}};
    for (const auto &[file, permissions] : expected) {
        EXPECT_EQ(PermissionsOf(file), permissions) << file;
    }
}

TEST_F(Program, ReplacedInputsKeepOwnerAndPermissions) {
    // Only root may give files away.
    const bool root = geteuid() == 0;
    const uid_t owner = root ? 1234 : geteuid();
    const gid_t group = root ? 4321 : getegid();
    const struct {
        bool givesAway, force;
        unsigned permissions;
        const char *told;
        bool kept;
    } cases[] = {
        {true, false, 0640, "", true},
        {true, false, 0440, "hymedian: in.png: is write-protected; --force replaces it all the same.\n",
         true},
        {true, true, 0440, "", true},
        {false, false, 0640,
         "hymedian: in.png: belongs to another user or group, and would be yours; --force replaces it all "
         "the same.\n",
         true},
        {false, true, 0640, "", false},
    };
    for (const auto &test : cases) {
        if (!test.givesAway && !root) {
            continue;
        }
        SCOPED_TRACE(testing::Message() << test.givesAway << test.force << test.permissions);
        fs::remove(folder / "in.png");
        WriteNoise("in.png", 40, 30, 3);
        const std::string noise = ContentsOf(folder / "in.png");
        fs::permissions(folder / "in.png", static_cast<fs::perms>(test.permissions));
        ASSERT_EQ(chown(Path("in.png").c_str(), owner, group), 0);
        givesFilesAway = test.givesAway;
        std::vector<std::string> arguments = {"in.png", "--in-place", "-r", "1"};
        arguments.resize(arguments.size() + test.force, "--force");
        EXPECT_EQ(Wait(Start(arguments)).err, test.told);
        EXPECT_EQ(ContentsOf(folder / "in.png") == noise, *test.told != '\0');
        EXPECT_EQ(PermissionsOf(folder / "in.png"), test.permissions);
        struct stat info = {};
        ASSERT_EQ(stat(Path("in.png").c_str(), &info), 0);
        EXPECT_EQ(info.st_uid, test.kept ? owner : geteuid());
        EXPECT_EQ(info.st_gid, test.kept ? group : getegid());
        EXPECT_EQ(FileCount(), 1u);
    }
}

// Whoever may write to the folders could lay them there.
TEST_F(Program, LinksUnderItsOwnNamesAreNotFollowed) {
    WriteNoise("in.png", 40, 30, 3);
    WriteBytes("precious", "precious");
    fs::create_directory(output / "preferences");
    for (const char *name : {"WEMBpref", "BackingStore", "TempImage", "AlphaImage", "SelectionImage"}) {
        fs::create_symlink(folder / "precious", output / "preferences" / name);
    }
    fs::create_symlink("precious", folder / ".hymedian-XXXXXX.png");
    EXPECT_EQ(Wait(Start({"in.png", "-o", "out.png", "-r", "3"})).status, 0);
    EXPECT_EQ(ContentsOf(folder / "precious"), "precious");
    const Ended remembered = Wait(Start({"in.png", "-o", "out.png", "-f"}));
    EXPECT_NE(remembered.out.find("radius 3"), std::string::npos) << remembered.out;
}

TEST_F(Program, InterruptLeavesNothing) {
    for (const char *name : {"in.png", "next.png", "last.png"}) {
        WriteNoise(name, 2000, 2000, 3);
    }
    const std::set<std::string> before = Names();
    const struct {
        int signal;
        std::vector<std::string> arguments;
        const char *out;
    } cases[] = {
        {SIGINT, {"in.png", "-o", "out.png", "-r", "4"}, ""},
        {SIGTERM, {"in.png", "-o", "out.png", "-r", "4"}, ""},
        {SIGINT,
         {"in.png", "next.png", "last.png", "--in-place", "-r", "4"},
         "3 pictures: 0 done, 0 failed, 3 left undone\n"},
    };
    for (const auto &[signal, arguments, out] : cases) {
        const pid_t child = Start(arguments);
        // The temporary file shows that the work has begun.
        while (Names() == before && waitpid(child, nullptr, WNOHANG) == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        kill(-child, signal);
        const Ended ended = Wait(child);
        EXPECT_EQ(ended.status, 130) << ended.err;
        EXPECT_EQ(ended.out, out);
        EXPECT_EQ(ended.err, "hymedian: in.png: interrupted, nothing was written.\n");
        EXPECT_EQ(Names(), before);
        EXPECT_EQ(kill(-child, 0), -1) << "a worker is left";
    }
}

TEST_F(Program, KilledRunsAreClearedUpAfterAndLivingOnesLeftAlone) {
    WriteNoise("in.png", 2000, 2000, 3);
    WriteNoise("small.png", 20, 20, 3);
    const std::set<std::string> before = Names();
    // Until there is a file that was not there.
    const auto startLongRun = [&](const char *out, const std::set<std::string> &known) {
        const pid_t child = Start({"in.png", "-o", out, "-r", "4", "--jobs", "1"});
        std::set<std::string> names = known;
        while (std::includes(known.begin(), known.end(), names.begin(), names.end())) {
            names = Names();
        }
        return child;
    };
    const pid_t dying = startLongRun("never.png", before);
    kill(-dying, SIGKILL);
    Wait(dying);
    const std::set<std::string> withTemporary = Names();
    EXPECT_EQ(withTemporary.size(), before.size() + 1);
    EXPECT_EQ(PermissionsOf(folder / *withTemporary.begin()), 0600U) << "of " << *withTemporary.begin();
    const pid_t living = startLongRun("later.png", withTemporary);
    kill(-living, SIGSTOP);
    EXPECT_EQ(Wait(Start({"small.png", "-o", "small-out.png"})).status, 0);
    kill(-living, SIGCONT);
    EXPECT_EQ(Wait(living).status, 0);
    std::set<std::string> after = before;
    after.insert({"small-out.png", "later.png"});
    EXPECT_EQ(Names(), after);
}

// Finds the program's children through the process table, which lists them for its first thread.
std::vector<pid_t> ChildrenOf(pid_t process) {
    const std::string number = std::to_string(process);
    std::ifstream list("/proc/" + number + "/task/" + number + "/children");
    return {std::istream_iterator<pid_t>(list), {}};
}

TEST_F(Program, AnyNumberOfJobsGivesTheSameFile) {
    WriteNoise("rgb.tif", 900, 500, 3);
    WriteNoise("grey16.tif", 500, 900, 2, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_GREY16);
    WriteNoise("mask.png", 900, 500, 1, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W);
    const std::vector<std::string> cases[] = {
        {"rgb.tif", "-o", "out.tif", "-f", "-r", "2"},
        {"grey16.tif", "-o", "out.tif", "-f", "-r", "1.5"},
        {"grey16.tif", "-o", "out.tif", "-f"},
        {"rgb.tif", "-o", "out.tif", "-f", "-r", "1", "--mask", "mask.png", "--select", "3,5,890,490"},
    };
    for (const auto &arguments : cases) {
        std::set<std::string> results, preferences, summaries;
        for (const char *jobs : {"1", "2", "7"}) {
            std::vector<std::string> withJobs = arguments;
            withJobs.insert(withJobs.end(), {"--jobs", jobs});
            const Ended ended = Wait(Start(withJobs));
            ASSERT_EQ(ended.status, 0) << ended.err;
            results.insert(ContentsOf(folder / "out.tif"));
            preferences.insert(ContentsOf(output / "preferences/WEMBpref"));
            summaries.insert(ended.out.substr(0, ended.out.rfind(',')));
        }
        EXPECT_EQ(results.size(), 1u);
        EXPECT_EQ(preferences.size(), 1u);
        EXPECT_EQ(summaries.size(), 1u);
    }
}

std::vector<uint8_t> PixelsOf(const std::string &file) {
    Picture picture;
    EXPECT_FALSE(OpenPicture(file, &picture));
    EXPECT_FALSE(ReadPixels(&picture, {}));
    const uint8_t *pixels = picture.document.source.get();
    return {pixels, pixels + PixelBytes(picture.document)};
}

// Radii that no action holds go through the filter's own dialog.
TEST_F(Program, EveryRadiusGivesWhatItsDefinitionGives) {
    constexpr int32_t kWidth = 400;
    constexpr int32_t kHeight = 30;
    WriteNoise("in.png", kWidth, kHeight, 3);
    const std::vector<uint8_t> noise = PixelsOf(Path("in.png"));
    for (int32_t radius = 1; radius <= 6; ++radius) {
        std::vector<uint8_t> defined(noise.size());
        FilterPlainly({PixelFormat::kRgb8, kWidth, kHeight, noise.data()}, radius, defined.data());
        const std::string digit = std::to_string(radius);
        const std::string fraction = radius < 6 ? ".9" : "";
        const Ended asked = Wait(Start({"in.png", "-o", "out.png", "-f", "-r", digit + fraction}));
        EXPECT_EQ(asked.status, 0) << asked.err;
        EXPECT_NE(asked.out.find("radius " + digit + ","), std::string::npos) << asked.out;
        EXPECT_EQ(PixelsOf(Path("out.png")), defined) << radius;
        const Ended remembered = Wait(Start({"in.png", "-o", "out.png", "-f"}));
        EXPECT_NE(remembered.out.find("radius " + digit + ","), std::string::npos) << remembered.out;
        EXPECT_EQ(PixelsOf(Path("out.png")), defined) << radius;
    }
}

TEST_F(Program, SelectionsAndMasksKeepTheRest) {
    WriteNoise("in.tif", 60, 40, 4, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_RGB16);
    WriteNoise("white.png", 60, 40, 1, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W);
    const OwnedObject<VipsImage> black(vips_image_new_from_file(Path("white.png").c_str(), nullptr));
    VipsImage *masks[2];
    const double zero = 0;
    const double levels[] = {0, 65535};
    for (const int i : {0, 1}) {
        VipsImage *wide = nullptr;
        vips_linear(black.get(), &wide, &zero, &levels[i], 1, nullptr);
        const OwnedObject<VipsImage> owned(wide);
        vips_cast_ushort(wide, &masks[i], nullptr);
        masks[i]->Type = VIPS_INTERPRETATION_GREY16;
        vips_image_write_to_file(masks[i], Path(i == 0 ? "black16.png" : "white16.png").c_str(), nullptr);
        g_object_unref(masks[i]);
    }
    const auto result = [&](std::vector<std::string> options) {
        options.insert(options.begin(), {"in.tif", "-o", "out.tif", "-f", "-r", "2"});
        EXPECT_EQ(Wait(Start(options)).status, 0);
        return ContentsOf(folder / "out.tif");
    };
    const std::string in = ContentsOf(folder / "in.tif").substr(8, 60 * 40 * 8);
    const std::string whole = result({}).substr(8, 60 * 40 * 8);
    EXPECT_EQ(result({"--mask", "white16.png"}).substr(8, 60 * 40 * 8), whole);
    EXPECT_EQ(result({"--mask", "black16.png"}).substr(8, 60 * 40 * 8), in);
    const std::string selected = result({"--select", "10,20,30,5"}).substr(8, 60 * 40 * 8);
    EXPECT_NE(selected, in);
    for (size_t i = 0; i < in.size(); ++i) {
        const size_t x = i / 8 % 60;
        const size_t y = i / 8 / 60;
        if (x < 10 || x >= 40 || y < 20 || y >= 25) {
            ASSERT_EQ(selected[i], in[i]) << x << ' ' << y;
        }
    }
}

TEST_F(Program, RecordsAndPlays) {
    WriteNoise("in.png", 40, 30, 3);
    EXPECT_EQ(
        Wait(Start({"in.png", "-o", "a.png", "-r", "2.5", "--record", "r.json", "--compare", "both.png"}))
            .status,
        0);
    EXPECT_EQ(Wait(Start({"in.png", "-o", "b.png", "-r", "1"})).status, 0);
    const Ended played = Wait(Start({"in.png", "-o", "c.png", "--play", "r.json"}));
    EXPECT_NE(played.out.find("radius 2,"), std::string::npos) << played.out;
    EXPECT_EQ(ContentsOf(folder / "a.png"), ContentsOf(folder / "c.png"));
    EXPECT_NE(ContentsOf(folder / "a.png"), ContentsOf(folder / "b.png"));
    const OwnedObject<VipsImage> both(vips_image_new_from_file(Path("both.png").c_str(), nullptr));
    ASSERT_NE(both, nullptr);
    EXPECT_EQ(vips_image_get_width(both.get()), 2 * 40 + 8);
    EXPECT_EQ(vips_image_get_height(both.get()), 30);

    WriteBytes("half.json", R"({"event": "HyMd", "parameters": {"nRad": {"type": "float", "value": 2.5}}})");
    const Ended half = Wait(Start({"in.png", "-o", "half.png", "--play", "half.json"}));
    EXPECT_NE(half.out.find("radius 2,"), std::string::npos) << half.out;
    EXPECT_EQ(ContentsOf(folder / "half.png"), ContentsOf(folder / "a.png"));
    // A radius that no action keeps is known only when the filter has run.
    EXPECT_EQ(Wait(Start({"in.png", "-o", "five.png", "-r", "5"})).status, 0);
    const std::set<std::string> before = Names();
    const Ended remembered = Wait(Start({"in.png", "-o", "new.png", "--record", "new.json"}));
    EXPECT_EQ(remembered.status, 1);
    EXPECT_EQ(remembered.err,
              "hymedian: new.json: nothing was written: the parameter \"nRad\" is a radius of 5, and "
              "--play takes those from 0 to 4.\n");
    EXPECT_EQ(Names(), before);
}

TEST_F(Program, OneFailureDoesNotStopABatch) {
    fs::create_directory(folder / "out");
    for (const char *name : {"a.png", "b.tif", "c.webp"}) {
        WriteNoise(name, 40, 30, 3);
    }
    WriteNoise("large.tif", 900, 500, 3);
    WriteBytes("bad.png", "nonsense");
    for (const char *jobs : {"1", "3"}) {
        const Ended ended = Wait(Start(
            {"a.png", "bad.png", "large.tif", "b.tif", "c.webp", "-o", "out", "-f", "-j", jobs, "-r", "1"}));
        EXPECT_EQ(ended.status, 1);
        EXPECT_NE(ended.out.find("\n5 pictures: 4 done, 1 failed\n"), std::string::npos) << ended.out;
        EXPECT_EQ(ended.err.find("hymedian: bad.png: "), 0u) << ended.err;
        for (const char *name : {"a.png", "b.tif", "c.webp", "large.tif"}) {
            EXPECT_TRUE(fs::remove(folder / "out" / name)) << name;
        }
        EXPECT_TRUE(fs::is_empty(folder / "out"));
    }
    EXPECT_EQ(Wait(Start({"a.png", "b.tif", "--in-place", "-q", "-r", "1"})).status, 0);
}

TEST_F(Program, WithoutWorkersEveryPictureFails) {
    WriteNoise("a.png", 40, 30, 3);
    WriteNoise("b.png", 40, 30, 3);
    const std::string noise = ContentsOf(folder / "a.png");
    descriptorLimit = 60;  // too few to pass any on
    const Ended ended = Wait(Start({"a.png", "b.png", "--in-place", "-j", "2"}));
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.out, "2 pictures: 0 done, 2 failed\n");
    EXPECT_EQ(ended.err,
              "hymedian: a.png: no worker process can be started; --jobs 1 does without.\n"
              "hymedian: b.png: no worker process can be started; --jobs 1 does without.\n");
    EXPECT_EQ(ContentsOf(folder / "a.png"), noise);
}

// Where a file may not grow any more, as on a full disk.
TEST_F(Program, FullDisksLeaveNothing) {
    WriteNoise("in.tif", 60, 40, 3);
    WriteNoise("two.tif", 60, 40, 3);
    fs::create_directory(folder / "out");
    const std::set<std::string> before = Names();
    fileSizeLimit = 60 * 40 * 3 + 50;
    const std::vector<std::string> outputs[] = {{"new.tif"}, {"new.png", "--compare", "both.png"}};
    for (const auto &names : outputs) {
        std::vector<std::string> arguments = {"in.tif", "-o"};
        arguments.insert(arguments.end(), names.begin(), names.end());
        const Ended ended = Wait(Start(arguments));
        EXPECT_EQ(ended.status, 1);
        EXPECT_NE(ended.err.find(names.back() + ": cannot be written: File too large.\n"), std::string::npos)
            << ended.err;
        EXPECT_EQ(Names(), before);
    }
    EXPECT_EQ(Wait(Start({"in.tif", "two.tif", "-o", "out", "-j", "2"})).status, 1);
    EXPECT_TRUE(fs::is_empty(folder / "out"));
}

TEST_F(Program, DeadWorkersAreToldAndLeaveNothing) {
    WriteNoise("large.png", 1500, 1500, 3);
    WriteNoise("small.png", 300, 250, 3);
    WriteNoise("small2.png", 300, 250, 3);
    fs::create_directory(folder / "out");
    const std::set<std::string> before = Names();
    const std::vector<std::string> commands[] = {
        {"large.png", "-o", "new.png", "-r", "4", "-j", "2"},
        {"small.png", "small2.png", "-o", "out", "-r", "4", "-j", "2"},
    };
    for (const auto &command : commands) {
        const pid_t program = Start(command);
        std::vector<pid_t> children;
        while (children.empty() && waitpid(program, nullptr, WNOHANG) == 0) {
            children = ChildrenOf(program);
        }
        ASSERT_FALSE(children.empty());
        kill(children[0], SIGKILL);
        const Ended ended = Wait(program);
        EXPECT_EQ(ended.status, 1);
        EXPECT_NE(ended.err.find("worker process was ended by signal 9"), std::string::npos) << ended.err;
        EXPECT_EQ(Names(), before);
        // Nobody of the program's group is left.
        EXPECT_EQ(kill(-program, 0), -1);
    }
    EXPECT_EQ(std::distance(fs::directory_iterator(folder / "out"), {}), 1) << "the other picture was done";
}

// The workers are at the first bands by the time the file turns out to be cut short.
TEST_F(Program, CutPicturesEndRunsThatHaveBegun) {
    WriteNoise("large.png", 900, 700, 3);
    WriteNoise("large.jpg", 900, 700, 3);
    for (const char *name : {"large.png", "large.jpg"}) {
        fs::resize_file(folder / name, fs::file_size(folder / name) * 2 / 3);
    }
    const std::set<std::string> before = Names();
    for (const std::string name : {"large.png", "large.jpg"}) {
        for (const char *select : {"0,0,900,700", "0,0,900,400"}) {
            const Ended ended =
                Wait(Start({name, "-o", "new.tif", "-r", "4", "-j", "3", "--select", select}));
            EXPECT_EQ(ended.status, 1);
            EXPECT_EQ(ended.err.find("hymedian: " + name + ": cannot be read"), 0u) << ended.err;
            EXPECT_EQ(std::count(ended.err.begin(), ended.err.end(), '\n'), 1) << ended.err;
            EXPECT_EQ(Names(), before);
        }
    }
}

// The options that a text names, as "-o,--output FILE", without quotes, fonts and escapes of a manual.
std::set<std::string> OptionsIn(const std::string &text, const char *line) {
    const std::regex pattern(line);
    std::set<std::string> options;
    for (std::sregex_iterator found(text.begin(), text.end(), pattern), end; found != end; ++found) {
        std::string option = (*found)[1];
        for (const auto &[from, to] : {std::pair(R"( "|"|\\f[IR])", ""), {R"(\\-)", "-"}, {", ", ","}}) {
            option = std::regex_replace(option, std::regex(from), to);
        }
        EXPECT_TRUE(options.insert(option).second) << option;
    }
    return options;
}

TEST_F(Program, HelpReadmeAndManualNameTheSameOptions) {
    const std::string help = Wait(Start({"--help"})).out;
    const std::string readme = ContentsOf(HYMEDIAN_README);
    const std::string manual = ContentsOf(HYMEDIAN_MANUAL);
    const std::set<std::string> options = OptionsIn(help, R"(\n  (-.*?)(?=\n|  | Excludes))");
    EXPECT_GT(options.size(), 15u);
    EXPECT_EQ(OptionsIn(readme, R"(\n\| `(-[^`]*)` \|)"), options);
    EXPECT_EQ(OptionsIn(manual, R"(\n\.TP\n\.B[IR]? (\\-.*))"), options);
    for (const std::string &text : {help, readme, manual}) {
        EXPECT_NE(text.find("any number from 1 to 6, fractions are dropped"), std::string::npos) << text;
    }
    const std::string version = Wait(Start({"--version"})).out;
    EXPECT_NE(manual.find('"' + version.substr(0, version.find('\n')) + '"'), std::string::npos) << version;
}

TEST_F(Program, TellsWhatThePluginSays) {
    const Ended ended = Wait(Start({"--info"}));
    EXPECT_EQ(ended.status, 0);
    for (const char *word : {"Hybrid Median…", "Noise", "4.0", "Lab 16", "CMYK 8"}) {
        EXPECT_NE(ended.out.find(word), std::string::npos) << word;
    }
}

}  // namespace
