// What the program finds around it: folders that are gone or new.
#include "host/preferences_folder.h"
#include "tests/host/program_fixture.h"

namespace {

namespace fs = std::filesystem;

class Surroundings : public Program {};

TEST_F(Surroundings, ACurrentFolderThatIsGoneStopsNothing) {
    WriteNoise("in.png", 40, 30, 3);
    const std::string commands[] = {"--version", Path("in.png") + " -o " + Path("out.png")};
    for (const std::string &command : commands) {
        const std::string line = "cd '" + folder.string() + "' && mkdir gone && cd gone && rmdir ../gone && " +
                                 executable + " " + command + " >/dev/null";
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

}  // namespace
