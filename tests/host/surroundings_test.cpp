// The program's environment: missing and new folders, and locks held by others.
#include "platform/native_paths.h"
#include "tests/host/program_fixture.h"
#include "tests/support/held_lock.h"

namespace {

namespace fs = std::filesystem;

class Surroundings : public Program {};

TEST_F(Surroundings, ACurrentFolderThatIsGoneStopsNothing) {
    WriteNoise("in.png", 40, 30, 3);
    const std::string commands[] = {"--version", Path("in.png") + " -o " + Path("out.png")};
    for (const std::string &command : commands) {
        const std::string line = "cd '" + folder.string() +
                                 "' && mkdir gone && cd gone && rmdir ../gone && " + executable + " " +
                                 command + " >/dev/null";
        EXPECT_EQ(std::system(line.c_str()), 0) << command;
    }
    EXPECT_TRUE(fs::exists(folder / "out.png"));
}

TEST_F(Surroundings, PreferencesFolderIsTheOwnersHoweverItIsWritten) {
    for (const char *name : {"new", "one/", "two//", "deep/er/"}) {
        setenv("HYMEDIAN_PREFERENCES", Path(name).c_str(), 1);
        MakePreferencesFolder();
        EXPECT_EQ(fs::status(folder / name).permissions(), fs::perms::owner_all) << name;
    }
}

// The only test that waits: two seconds, once for all pictures.
TEST_F(Surroundings, LockedPreferencesAreDoneWithout) {
    const fs::path preferences = output / "preferences/WEMBpref";
    WriteNoise("a.png", 40, 30, 3);
    WriteNoise("b.png", 40, 30, 3);
    fs::create_directory(folder / "out");
    const std::vector<std::string> command = {"a.png", "b.png", "-o", "out", "-f", "-j", "1"};
    std::vector<std::string> withRadius = command;
    withRadius.insert(withRadius.end(), {"-r", "3"});
    ASSERT_EQ(Wait(Start(withRadius)).status, 0);
    const std::string remembered = ContentsOf(preferences);

    const HeldLock other(preferences, std::chrono::seconds(10));
    const Ended ended = Wait(Start(command));
    EXPECT_TRUE(IsLocked(preferences)) << "it was waited for until it was let go";
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.err, "");
    EXPECT_NE(ended.out.find("radius 1, the default"), std::string::npos) << ended.out;
    EXPECT_EQ(ContentsOf(preferences), remembered);
}

}  // namespace
