// Inputs and outputs that are no single files: pipes and folders.
#include "tests/host/program_fixture.h"

namespace {

namespace fs = std::filesystem;

std::set<std::string> TreeOf(const fs::path &folder) {
    std::set<std::string> names;
    for (const auto &entry : fs::recursive_directory_iterator(folder)) {
        names.insert(entry.path().lexically_relative(folder).string());
    }
    return names;
}

TEST_F(Program, WorksInPipes) {
    WriteNoise("in.png", 90, 70, 3);
    WriteNoise("pages.tif[page-height=35]", 90, 70, 3);
    for (const std::string name : {"in.png", "pages.tif"}) {
        ASSERT_EQ(Wait(Start({name, "-o", "file-" + name, "-r", "2", "-q"})).status, 0);
    }
    WriteBytes("broken.png", ContentsOf(folder / "in.png").substr(0, 200));
    executable = "/bin/sh";
    const std::string run = std::string(HYMEDIAN_PROGRAM) + " - -r 2 -o ";
    const struct {
        std::string command;
        int status;
        const char *expected;  // a file with the bytes that the pipe has, or none
        std::string told;
    } cases[] = {
        {"cat in.png | " + run + "- --format png", 0, "file-in.png",
         "standard input -> standard output: 90 x 70 RGB, 8 bits, radius 2, "},
        {run + "- --format PNG < in.png", 0, "file-in.png", "standard input -> standard output: 90 x 70"},
        {"cat pages.tif | " + run + "- --format tif", 0, "file-pages.tif", "2 pages of 90 x 35"},
        {"cat in.png | " + run + "out.png >&2 && cat out.png", 0, "file-in.png", "standard input -> out.png"},
        {"cat broken.png | " + run + "- --format png", 1, nullptr,
         "hymedian: standard input: cannot be read"},
        {run + "-  < in.png", 2, nullptr, "--format"},
        {run + "/dev < in.png", 2, nullptr, "Standard input needs an output"},
        {run + "- --format gif < in.png", 2, nullptr, "--format can be"},
        {run + "- --format png < in.png > /dev/full", 1, nullptr,
         "standard output: cannot be written: No space"},
    };
    for (const auto &[command, status, expected, told] : cases) {
        SCOPED_TRACE(command);
        const Ended ended = Wait(Start({"-c", command}));
        EXPECT_EQ(ended.status, status);
        EXPECT_TRUE(ended.out == (expected == nullptr ? "" : ContentsOf(folder / expected)));
        EXPECT_NE(ended.err.find(told), std::string::npos) << ended.err;
        fs::remove(folder / "out.png");
    }
    EXPECT_EQ(FileCount(), 5U) << "something was left over";
}

TEST_F(Program, TakesFoldersAndMirrorsThem) {
    for (const char *name : {"tree/sub/deep", "tree/.hidden"}) {
        fs::create_directories(folder / name);
    }
    for (const char *name : {"tree/a.png", "tree/sub/a.png", "tree/sub/deep/b.tif", "tree/.hidden/c.png",
                             "tree/.d.png", "tree/sub/e-clean.png"}) {
        WriteNoise(name, 20, 20, 3);
    }
    WriteBytes("tree/notes.txt", "no picture");
    const std::set<std::string> inputs = TreeOf(folder);
    const struct {
        std::vector<std::string> command;
        std::set<std::string> outputs;
    } cases[] = {
        {{"-R", "tree", "-o", "new/out"},
         {"new", "new/out", "new/out/a.png", "new/out/sub", "new/out/sub/a.png", "new/out/sub/deep",
          "new/out/sub/deep/b.tif", "new/out/sub/e-clean.png"}},
        // Its own outputs are no inputs, nor are those of an earlier run.
        {{"-R", "tree", "-o", "tree/out", "-f"},
         {"tree/out", "tree/out/a.png", "tree/out/sub", "tree/out/sub/a.png", "tree/out/sub/deep",
          "tree/out/sub/deep/b.tif", "tree/out/sub/e-clean.png"}},
        {{"-R", "tree", "--suffix=-clean", "-f"},
         {"tree/a-clean.png", "tree/sub/a-clean.png", "tree/sub/deep/b-clean.tif"}},
        {{"tree/a.png", "tree/sub/a.png", "--suffix=-x", "-f"}, {"tree/a-x.png", "tree/sub/a-x.png"}},
    };
    for (const auto &[command, outputs] : cases) {
        for (int run = 0; run < 2; ++run) {
            std::vector<std::string> all = command;
            all.insert(all.end(), {"-r", "1", "-f"});
            const Ended ended = Wait(Start(all));
            EXPECT_EQ(ended.status, 0) << ended.err;
            std::set<std::string> expected = inputs;
            expected.insert(outputs.begin(), outputs.end());
            EXPECT_EQ(TreeOf(folder), expected);
        }
        fs::remove_all(folder / "new");
        for (const std::string &name : outputs) {
            fs::remove_all(folder / name);
        }
    }
    ExpectRefusals({
        {"-R tree/.hidden/none -o out", 1, "tree/.hidden/none: no such file"},
        {"tree -o out.png", 1, "tree: this is a folder, not a picture; --recursive"},
        {"-R tree -o tree/notes.txt", 2, "tree/notes.txt: this is no folder"},
        {"-R tree --suffix=/x", 2, "slash"},
        {"tree/notes.txt -o .", 1, "tree/notes.txt: this is no readable"},
    });
}

}  // namespace
