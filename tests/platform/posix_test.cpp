// What POSIX alone has: permissions, links, limits, signals.
#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>
#include <optional>
#include <thread>

#include "imagestore/named_images.h"
#include "platform/locks.h"
#include "platform/native_paths.h"
#include "platform/posix/errors.h"
#include "settings/preferences_file.h"
#include "tests/support/held_lock.h"
#include "tests/support/platform_fixture.h"

namespace {

TEST_F(Platform, FilesAreTheirOwnersAndLinksAreNotFollowed) {
    ASSERT_EQ(HCreate(volume, directory, Name("a/b\212"), kCode, kCode), noErr);
    struct stat info;
    ASSERT_EQ(stat((folder / "a:b\u00E4").c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 0777, 0600u);

    int16_t ref;
    std::filesystem::create_symlink("/etc/hostname", folder / "link");
    EXPECT_EQ(HOpen(volume, directory, Name("link"), fsRdWrPerm, &ref), ioErr);
    std::filesystem::create_symlink("elsewhere", folder / "dangling");
    EXPECT_EQ(HCreate(volume, directory, Name("dangling"), kCode, kCode), dupFNErr);
    EXPECT_FALSE(std::filesystem::exists(folder / "elsewhere"));
}

TEST_F(Platform, PreferencesFolderIsFoundThroughItsVariables) {
    const std::string home = folder / "home", configHome = folder / "config", own = folder / "own";
    const struct {
        const char *own, *configHome;
        std::string found;
    } cases[] = {{own.c_str(), configHome.c_str(), own},
                 {nullptr, configHome.c_str(), configHome + "/hymedian/Preferences"},
                 {"", "", home + "/.config/hymedian/Preferences"},
                 {nullptr, nullptr, home + "/.config/hymedian/Preferences"}};
    const auto set = [](const char *name, const char *value) {
        value == nullptr ? unsetenv(name) : setenv(name, value, 1);
    };
    const std::string homeBefore = getenv("HOME") == nullptr ? "" : getenv("HOME");
    setenv("HOME", home.c_str(), 1);
    for (const auto &c : cases) {
        set("HYMEDIAN_PREFERENCES", c.own);
        set("XDG_CONFIG_HOME", c.configHome);
        std::filesystem::remove_all(c.found);
        EXPECT_EQ(FindFolder(kOnSystemDisk, kPreferencesFolderType, false, &volume, &directory), fnfErr);
        std::filesystem::create_directories(c.found);
        EXPECT_EQ(FindFolder(kOnSystemDisk, kPreferencesFolderType, false, &volume, &directory), noErr);
        EXPECT_EQ(HCreate(volume, directory, Name("x"), kCode, kCode), noErr);
        EXPECT_TRUE(std::filesystem::exists(c.found + "/x")) << c.found;
    }
    unsetenv("HOME");
    EXPECT_EQ(PreferencesPath(), getpwuid(getuid())->pw_dir + std::string("/.config/hymedian/Preferences"));
    setenv("HOME", homeBefore.c_str(), 1);
    unsetenv("XDG_CONFIG_HOME");
}

// A read-only file, opened by a user other than root.
TEST_F(Platform, CurrentPermissionIsWhateverIsAllowed) {
    std::ofstream(folder / "shown") << "text";
    std::filesystem::permissions(folder / "shown", std::filesystem::perms(0444));
    std::filesystem::permissions(folder, std::filesystem::perms(0755));
    const uid_t user = geteuid();
    ASSERT_EQ(user == 0 ? seteuid(65534) : 0, 0);
    int16_t ref = 0;
    EXPECT_EQ(HOpen(volume, directory, Name("shown"), fsRdWrPerm, &ref), permErr);
    const OSErr err = HOpen(volume, directory, Name("shown"), fsCurPerm, &ref);
    ASSERT_EQ(seteuid(user), 0);
    ASSERT_EQ(err, noErr);
    int64_t count = 4;
    char read[4];
    EXPECT_EQ(FSRead(ref, &count, read), noErr);
    EXPECT_NE(FSWrite(ref, &count, read), noErr);
    FSClose(ref);
}

TEST_F(Platform, SystemErrorsHaveTheirCodes) {
    const std::pair<int, OSErr> codes[] = {
        {ENOENT, -43},   {ENOTDIR, -120},     {EEXIST, -48}, {EACCES, -54}, {EPERM, -54},
        {EROFS, -44},    {ENOSPC, -34},       {EDQUOT, -34}, {EMFILE, -42}, {EBADF, -51},
        {EISDIR, -1302}, {ENAMETOOLONG, -37}, {EIO, -36},    {ELOOP, -36}};
    for (const auto &[error, code] : codes) {
        EXPECT_EQ(posix_errors::ErrorFromErrno(error), code) << std::strerror(error);
    }
}

TEST_F(Platform, LocksOfOthersAreNotWaitedForLong) {
    ASSERT_EQ(HCreate(volume, directory, Name("file"), kCode, kCode), noErr);
    int16_t ref;
    ASSERT_EQ(HOpen(volume, directory, Name("file"), fsRdWrPerm, &ref), noErr);
    FolderLock lock = -1;
    const struct {
        std::filesystem::path path;
        std::function<OSErr()> take;
        std::function<void()> release;
    } kinds[] = {
        {folder / "file", [&] { return LockFile(ref); }, [&] { UnlockFile(ref); }},
        {folder, [&] { return LockFolder(volume, directory, &lock); }, [&] { UnlockFolder(lock); }},
    };
    for (const auto &kind : kinds) {
        for (int round = 0; round < 2; ++round) {
            {
                const HeldLock other(kind.path);
                ASSERT_EQ(kind.take(), userCanceledErr) << "a signal ends the wait";
                ASSERT_EQ(kind.take(), fBsyErr) << "only tried after a wait in vain";
            }
            EXPECT_EQ(kind.take(), noErr);
            EXPECT_TRUE(IsLocked(kind.path));
            kind.release();
            EXPECT_FALSE(IsLocked(kind.path));
        }
    }
    FSClose(ref);
    EXPECT_EQ(LockFile(ref), rfNumErr);
    EXPECT_EQ(LockFolder(volume, 9999, &lock), noErr);
    EXPECT_EQ(lock, -1);
}

std::filesystem::path folderToLock;
std::optional<HeldLock> another;

// Clearing fails because the file cannot grow, and at that moment another process takes the folder's lock.
TEST_F(Platform, FailedClearingDeletesBackingStoreUnderTheFoldersLock) {
    folderToLock = folder;
    faults::RefuseTemporaryMemory(true);
    rlimit before;
    getrlimit(RLIMIT_FSIZE, &before);
    for (const bool locked : {true, false}) {
        std::ofstream(folder / "BackingStore") << "of another process";
        std::signal(SIGXFSZ, locked ? [](int) { another.emplace(folderToLock); } : SIG_IGN);
        const rlimit small = {10, before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
        NamedImage *image;
        const OSErr err = MakeTempImage(100, 30, 1, &image);
        setrlimit(RLIMIT_FSIZE, &before);
        EXPECT_EQ(err, dskFulErr);
        EXPECT_EQ(image->fileRef, -1);
        EXPECT_EQ(another.has_value(), locked);
        EXPECT_EQ(std::filesystem::exists(folder / "BackingStore"), locked);
        another.reset();
        TossTempImage(image);
    }
    std::signal(SIGXFSZ, SIG_DFL);
    EXPECT_EQ(FileCount(), 0u);
}

// While another process holds the file's lock, the file is neither read nor written.
TEST_F(Platform, LockedFilesAreWaitedFor) {
    const auto whileLocked = [this](const std::function<void()> &inside, const std::function<void()> &call) {
        const int file = open((folder / "WEMBpref").c_str(), O_RDWR);
        EXPECT_EQ(flock(file, LOCK_EX | LOCK_NB), 0) << "still locked";
        std::thread other([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            inside();
            close(file);
        });
        call();
        other.join();
    };
    RunContext context = {};
    const std::string before(53248, 'A');
    const std::string after(53248, 'B');
    int16_t ref = 0;
    WriteBytes("WEMBpref", before);
    whileLocked([&] { WriteBytes("WEMBpref", after); }, [&] { ref = ReadPreferences(&context); });
    EXPECT_EQ(context.preferencesHeader[0], 'B');
    EXPECT_EQ(context.preferenceStrings[47][0], 'B');
    EXPECT_EQ(context.preferencesTail[0], 'B');
    context.preferencesHeader[0] = 'C';
    whileLocked(
        [&] { EXPECT_TRUE(ContentsOf(folder / "WEMBpref") == after) << "written under another's lock"; },
        [&] { WritePreferences(&context, ref); });
    EXPECT_EQ(ContentsOf(folder / "WEMBpref")[0], 'C');
}

// Also when it was started by a name that means nothing where it is now.
TEST(OwnFolder, IsTheProgramsWhateverItWasStartedAs) {
    const std::filesystem::path before = std::filesystem::current_path();
    const std::filesystem::path program = std::filesystem::read_symlink("/proc/self/exe");
    std::filesystem::current_path("/");
    EXPECT_EQ(OwnFolder(), program.parent_path());
    std::filesystem::current_path(before);
    if (std::getenv("OWN_FOLDER_AGAIN") == nullptr) {
        const std::string command = "cd '" + program.parent_path().string() + "' && OWN_FOLDER_AGAIN=1 ./" +
                                    program.filename().string() + " --gtest_filter='OwnFolder.*' >/dev/null";
        EXPECT_EQ(std::system(command.c_str()), 0);
    }
}

}  // namespace
