// Where the program writes, what it overwrites, and who owns the files.
#include <sys/stat.h>
#include <unistd.h>

#include "tests/host/program_fixture.h"

namespace {

namespace fs = std::filesystem;

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

// Anyone with write access to the folders could plant such links.
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

// Files cannot grow here, as on a full disk.
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
    fileSizeLimit = 0;
    WriteNoise("large.png", 800, 600, 3);
    fileSizeLimit = 300'000;
    for (const char *option : {"--amount=50", "--passes=2"}) {
        for (const char *name : {"out/new.png", "out/new.pam", "out/new.tif"}) {
            const Ended ended = Wait(Start({"large.png", "-o", name, "-r", "1", "-j", "1", option}));
            EXPECT_EQ(ended.status, 1) << option << name;
            ExpectOneSentence(ended, std::string(name) + ": cannot be written: File too large.");
            EXPECT_TRUE(fs::is_empty(folder / "out"));
        }
    }
}

}  // namespace
