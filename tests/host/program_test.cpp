// The program as its users meet it: exit status, one sentence, and what is in the folder afterwards.
#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <fstream>
#include <iterator>
#include <set>
#include <thread>

#include "tests/host/host_fixture.h"

namespace {

namespace fs = std::filesystem;

struct Ended {
    int status;
    std::string out, err;
};

std::string Contents(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class Program : public HostTest {
  protected:
    Program() {
        setenv("HYMEDIAN_PREFERENCES", (output / "preferences").c_str(), 1);
        fs::create_directory(output);
    }

    ~Program() override { fs::remove_all(output); }

    // Starts the program in the test's folder; what it prints goes to files outside.
    pid_t Start(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), HYMEDIAN_PROGRAM);
        std::vector<char *> pointers;
        for (std::string &argument : arguments) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        const pid_t child = fork();
        if (child == 0) {
            const auto redirect = [&](int descriptor, const char *name) {
                dup2(open((output / name).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), descriptor);
            };
            redirect(STDOUT_FILENO, "out");
            redirect(STDERR_FILENO, "err");
            if (chdir(folder.c_str()) == 0) {
                execv(HYMEDIAN_PROGRAM, pointers.data());
            }
            _exit(127);
        }
        return child;
    }

    Ended Wait(pid_t child) {
        int status = 0;
        waitpid(child, &status, 0);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, Contents(output / "out"),
                Contents(output / "err")};
    }

    void WriteBytes(const std::string &name, const std::string &bytes) {
        std::ofstream(folder / name, std::ios::binary) << bytes;
    }

    // A picture of grey noise in the given format and colour space.
    void WriteNoise(const std::string &name, int width, int height, int bands,
                    VipsBandFormat format = VIPS_FORMAT_UCHAR,
                    VipsInterpretation interpretation = VIPS_INTERPRETATION_sRGB) {
        std::vector<uint8_t> bytes(static_cast<size_t>(width * height * bands) * vips_format_sizeof(format));
        std::generate(bytes.begin(), bytes.end(), std::mt19937(3));
        const OwnedObject<VipsImage> image(
            vips_image_new_from_memory(bytes.data(), bytes.size(), width, height, bands, format));
        image->Type = interpretation;
        ASSERT_EQ(vips_image_write_to_file(image.get(), Path(name).c_str(), nullptr), 0)
            << vips_error_buffer();
    }

    std::set<std::string> Names() const {
        std::set<std::string> names;
        for (const auto &entry : fs::directory_iterator(folder)) {
            names.insert(entry.path().filename());
        }
        return names;
    }

    fs::path output = folder.string() + "-output";
};

TEST_F(Program, FailsWithOneSentenceAndLeavesNothing) {
    WriteNoise("good.png", 40, 30, 3);
    WriteNoise("good.tif", 40, 30, 3);
    WriteNoise("16.tif", 40, 30, 3, VIPS_FORMAT_USHORT, VIPS_INTERPRETATION_RGB16);
    WriteNoise("cmyk.tif", 40, 30, 4, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_CMYK);
    WriteNoise("lab.tif", 40, 30, 3, VIPS_FORMAT_FLOAT, VIPS_INTERPRETATION_LAB);
    WriteNoise("uint.tif", 40, 30, 1, VIPS_FORMAT_UINT, VIPS_INTERPRETATION_B_W);
    WriteNoise("pages.tif[page-height=15]", 40, 30, 3);
    WriteNoise("wide.png", 30001, 1, 1, VIPS_FORMAT_UCHAR, VIPS_INTERPRETATION_B_W);
    WriteNoise("other.png", 40, 30, 3);
    WriteNoise("whole.jpg", 40, 30, 3);
    for (const char *name : {"whole.jpg", "good.png", "good.tif"}) {
        const std::string whole = Contents(folder / name);
        WriteBytes(std::string("cut-") + name, whole.substr(0, whole.size() * 2 / 3));
    }
    // A PNG whose width says 0.
    std::string zero = Contents(folder / "good.png");
    std::fill_n(zero.begin() + 16, 4, '\0');
    WriteBytes("zero.png", zero);
    // Two frames of animation are announced right behind the header.
    std::string animated = Contents(folder / "good.png");
    animated.insert(33, std::string("\0\0\0\x08"
                                    "acTL\0\0\0\2\0\0\0\0\xF3\x8D\x93\x70",
                                    20));
    WriteBytes("animated.png", animated);
    WriteBytes("empty.png", "");
    WriteBytes("text.png", "not a picture");
    fs::create_directory(folder / "folder.png");
    fs::create_directory(folder / "no-main");
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
        {{"cut-good.png", "-o", "new.png"}, 1, "cut-good.png"},
        {{"cut-good.tif", "-o", "new.tif"}, 1, "cut-good.tif"},
        {{"cut-whole.jpg", "-o", "new.png"}, 1, "cut-whole.jpg"},
        {{"folder.png", "-o", "new.png"}, 1, "folder.png: this is a folder"},
        {{"cmyk.tif", "-o", "new.tif"}, 1, "CMYK"},
        {{"lab.tif", "-o", "new.tif"}, 1, "Lab"},
        {{"uint.tif", "-o", "new.tif"}, 1, "uint"},
        {{"pages.tif", "-o", "new.tif"}, 1, "pages.tif: it has several pages"},
        {{"animated.png", "-o", "new.png"}, 1, "animated.png: it has several pages"},
        {{"wide.png", "-o", "new.png"}, 1, "30000"},
        {{"16.tif", "-o", "new.jpg"}, 1, "16.tif"},
        {{"good.png", "-o", "other.png"}, 1, "other.png: exists already"},
        {{"good.png", "-o", "folder.png", "-f"}, 1, "folder.png"},
        {{"good.png", "-o", "good.png", "-f"}, 2, "--in-place"},
        {{"good.png", "-o", "nowhere/new.png"}, 1, "nowhere"},
        {{"good.png", "-o", "/proc/new.png"}, 1, "/proc/new.png"},
        {{"good.png", "-o", "new.gif"}, 2, "new.gif"},
        {{"good.png", "-o", "new.png", "--plugin", "nowhere"}, 1, "nowhere"},
        {{"good.png", "-o", "new.png", "--plugin", "no-main"}, 1, "main"},
        {{"good.png", "-o", "new.png", "-r", "0.5"}, 2, "radius"},
        {{"good.png", "-o", "new.png", "-r", "4.01"}, 2, "radius"},
        {{"good.png", "-o", "new.png", "-r", "nan"}, 2, "radius"},
        {{"good.png", "-o", "new.png", "-r", "wide"}, 2, "wide"},
        {{"good.png", "-o", "new.png", "--raduis", "2"}, 2, "--raduis"},
        {{"good.png"}, 2, "good.png"},
        {{}, 2, "--help"},
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
    ASSERT_EQ(chmod(Path("in.png").c_str(), 0640), 0);
    fs::create_symlink("in.png", folder / "link.png");
    const std::string noise = Contents(folder / "in.png");

    const Ended plain = Wait(Start({"in.png", "-o", "out [x=1].png", "-r", "2"}));
    EXPECT_EQ(plain.status, 0) << plain.err;
    EXPECT_EQ(plain.out.find("in.png -> out [x=1].png: 40 x 30 RGB, 8 bits, radius 2, "), 0U) << plain.out;
    EXPECT_EQ(plain.err, "") << "a bar without a terminal";
    struct stat info;
    ASSERT_EQ(stat(Path("out [x=1].png").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0640U);
    ASSERT_EQ(stat((output / "preferences").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0700U);

    const std::string filtered = Contents(folder / "out [x=1].png");
    const Ended forced = Wait(Start({"in.png", "-o", "old.png", "-f", "-q", "-r", "2"}));
    EXPECT_EQ(forced.out, "");
    EXPECT_EQ(Contents(folder / "old.png"), filtered);
    EXPECT_EQ(Contents(folder / "in.png"), noise);

    EXPECT_EQ(Wait(Start({"link.png", "--in-place", "-r", "2"})).status, 0);
    EXPECT_TRUE(fs::is_symlink(folder / "link.png"));
    EXPECT_EQ(Contents(folder / "in.png"), filtered);
    EXPECT_EQ(FileCount(), 4U) << "something was left over";
}

TEST_F(Program, InterruptLeavesNothing) {
    WriteNoise("in.png", 2000, 2000, 3);
    const std::set<std::string> before = Names();
    for (const int signal : {SIGINT, SIGTERM}) {
        const pid_t child = Start({"in.png", "-o", "out.png", "-r", "4"});
        // The temporary file shows that the work has begun.
        while (Names() == before && waitpid(child, nullptr, WNOHANG) == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        kill(child, signal);
        const Ended ended = Wait(child);
        EXPECT_EQ(ended.status, 130) << ended.err;
        EXPECT_EQ(ended.err, "hymedian: in.png: interrupted, nothing was written.\n");
        EXPECT_EQ(Names(), before);
    }
}

}  // namespace
