#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>

#include "platform/date_time.h"
#include "platform/files.h"
#include "platform/locks.h"
#include "platform/mac_roman.h"
#include "platform/memory.h"
#include "platform/native_paths.h"
#include "platform/posix/errors.h"
#include "tests/support/held_lock.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_images.h"

namespace {

class Platform : public ScratchFolder {
  protected:
    void SetUp() override {
        ASSERT_EQ(FindFolder(kOnSystemDisk, kPreferencesFolderType, false, &volume, &directory), noErr);
    }

    int16_t volume;
    int32_t directory;
};

struct Name {
    explicit Name(const std::string &text) {
        bytes[0] = static_cast<uint8_t>(text.size());
        std::copy(text.begin(), text.end(), bytes + 1);
    }
    operator ConstStringPtr() const { return bytes; }
    Str255 bytes;
};

constexpr OSType kCode = FourCharCode("abcd");

TEST_F(Platform, MemoryHasLimitsAndFailsOnDemand) {
    faults::SetMemoryLimit(faults::BytesInUse() + 100);
    EXPECT_EQ(NewPtr(101), nullptr);
    EXPECT_EQ(NewPtr(-1), nullptr);
    Ptr block = NewPtrClear(60);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(GetPtrSize(block), 60);
    OSErr err;
    EXPECT_EQ(TempNewHandle(41, &err), nullptr);
    EXPECT_EQ(err, memFullErr);
    DisposePtr(block);
    faults::SetMemoryLimit(-1);

    faults::FailAllocation(2);
    Handle handle = NewHandle(3);
    std::copy_n("abc", 3, *handle);
    EXPECT_EQ(SetHandleSize(handle, 9), memFullErr);
    EXPECT_EQ(std::string(*handle, 3), "abc");
    EXPECT_EQ(SetHandleSize(handle, 5), noErr);
    EXPECT_EQ(std::string(*handle, 5), std::string("abc\0\0", 5));
    EXPECT_EQ(GetHandleSize(handle), 5);
    DisposeHandle(handle);
}

TEST_F(Platform, FilesAreCreatedOpenedReadAndDeleted) {
    const Name name("a/b\212");  // a slash in a Mac name; 0x8A is a with diaeresis
    int16_t ref;
    EXPECT_EQ(HOpen(volume, directory, name, fsRdWrPerm, &ref), fnfErr);
    EXPECT_EQ(HCreate(volume, directory, name, kCode, kCode), noErr);
    EXPECT_EQ(HCreate(volume, directory, name, kCode, kCode), dupFNErr);
    const auto path = folder / "a:b\u00E4";
    ASSERT_TRUE(std::filesystem::exists(path));
    struct stat info;
    stat(path.c_str(), &info);
    EXPECT_EQ(info.st_mode & 0777, 0600u);

    ASSERT_EQ(HOpen(volume, directory, name, fsRdWrPerm, &ref), noErr);
    EXPECT_GT(ref, 0);
    int64_t count = 1000;
    EXPECT_EQ(AllocContig(ref, &count), noErr);
    EXPECT_EQ(std::filesystem::file_size(path), 0u);
    count = 5;
    EXPECT_EQ(FSWrite(ref, &count, "12345"), noErr);
    EXPECT_EQ(SetFPos(ref, fsFromStart, 2), noErr);
    char read[8];
    count = sizeof read;
    EXPECT_EQ(FSRead(ref, &count, read), eofErr);
    EXPECT_EQ(std::string(read, static_cast<size_t>(count)), "345");
    EXPECT_EQ(SetFPos(ref, fsFromLEOF, -1), noErr);
    EXPECT_EQ(SetFPos(ref, fsFromMark, -5), posErr);
    EXPECT_EQ(SetFPos(ref, fsFromStart, 6), eofErr);
    count = 1;
    EXPECT_EQ(FSWrite(ref, &count, "6"), noErr);
    EXPECT_EQ(std::filesystem::file_size(path), 6u);

    EXPECT_EQ(HDelete(volume, directory, name), noErr) << "also while it is open";
    EXPECT_EQ(HDelete(volume, directory, name), fnfErr);
    EXPECT_EQ(FSClose(ref), noErr);
    EXPECT_EQ(FSClose(ref), rfNumErr);
    count = 1;
    EXPECT_EQ(FSWrite(ref, &count, "x"), rfNumErr);
    EXPECT_EQ(SetFPos(0, fsFromStart, 0), rfNumErr);
}

TEST_F(Platform, NamesAndFoldersAreChecked) {
    std::filesystem::create_directory(folder / "sub");
    std::filesystem::create_symlink("/etc/hostname", folder / "link");
    int16_t ref;
    const struct {
        std::string name;
        OSErr err;
    } cases[] = {{"", bdNamErr},
                 {".", bdNamErr},
                 {"..", bdNamErr},
                 {"..:escape", bdNamErr},
                 {"sub:inside", bdNamErr},
                 {":escape", bdNamErr},
                 {std::string(64, 'n'), bdNamErr},
                 {std::string(63, 'n'), fnfErr},
                 {"sub", notAFileErr},
                 {"link", ioErr}};
    for (const auto &c : cases) {
        EXPECT_EQ(HOpen(volume, directory, Name(c.name), fsRdWrPerm, &ref), c.err) << c.name;
        if (c.err == bdNamErr) {
            EXPECT_EQ(HCreate(volume, directory, Name(c.name), kCode, kCode), bdNamErr) << c.name;
            EXPECT_EQ(HDelete(volume, directory, Name(c.name)), bdNamErr) << c.name;
        }
    }
    std::filesystem::create_symlink("elsewhere", folder / "dangling");
    EXPECT_EQ(HCreate(volume, directory, Name("dangling"), kCode, kCode), dupFNErr);
    EXPECT_FALSE(std::filesystem::exists(folder / "elsewhere"));
    EXPECT_EQ(HCreate(volume, 0, Name("x"), kCode, kCode), dirNFErr);
    EXPECT_EQ(HCreate(0, directory, Name("x"), kCode, kCode), nsvErr);
    std::filesystem::remove_all(folder);
    EXPECT_EQ(HCreate(volume, directory, Name("x"), kCode, kCode), dirNFErr);
    EXPECT_EQ(FindFolder(kOnSystemDisk, kPreferencesFolderType, true, &volume, &directory), fnfErr);
    EXPECT_FALSE(std::filesystem::exists(folder)) << "looking for it does not make it";
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
        EXPECT_EQ(posix::ErrorFromErrno(error), code) << std::strerror(error);
    }
}

TEST_F(Platform, SpecificationsThatCannotBeMadeNameNothing) {
    FSSpec spec;
    const FSSpec nothing = {};
    for (const bool fails : {true, false}) {
        std::memset(&spec, 0xFF, sizeof spec);
        faults::FailFileCall(fails ? 1 : 0, ioErr);
        EXPECT_EQ(FSMakeFSSpec(0, fails ? 0 : directory, Name("x"), &spec), fails ? ioErr : paramErr);
        EXPECT_EQ(spec.vRefNum, 0);
        EXPECT_EQ(spec.parID, 0);
        EXPECT_EQ(std::memcmp(spec.name, nothing.name, sizeof spec.name), 0);
        EXPECT_EQ(FSpDelete(&spec), nsvErr);
    }
}

TEST_F(Platform, CharactersGoToUTF8AndBack) {
    std::string all, upperHalf;
    for (int byte = 0; byte < 256; ++byte) {
        all += static_cast<char>(byte);
    }
    upperHalf = MacRomanToUTF8(all.substr(128));
    EXPECT_EQ(Crc32({upperHalf.begin(), upperHalf.end()}), 0x87819812) << "as other implementations have it";
    EXPECT_EQ(MacRomanToUTF8(all), all.substr(0, 128) + upperHalf);
    EXPECT_EQ(UTF8ToMacRoman(MacRomanToUTF8(all)), all);
    // Not in the character set, truncated, invalid, and overlong slashes.
    const std::pair<const char *, const char *> cases[] = {{"\u4E2D", "?"},
                                                           {"a\xC3", "a?"},
                                                           {"\xBFz", "?z"},
                                                           {"\xC0\xAF", "??"},
                                                           {"\xE0\x80\xAF", "???"},
                                                           {"\xF0\x80\x80\xAF", "????"},
                                                           {"\xF0\x82\x82\xA9", "????"}};
    for (const auto &[text, expected] : cases) {
        EXPECT_EQ(UTF8ToMacRoman(text), expected);
    }

    // What such a slash would reach if it were decoded.
    std::filesystem::create_directory(folder / "sub");
    std::ofstream(folder / "other") << "stays";
    FSSpec spec;
    EXPECT_EQ(SpecFromNativePath(folder / "sub/..\xC0\xAFother", &spec), fnfErr);
    EXPECT_EQ(FSpDelete(&spec), fnfErr);
    EXPECT_TRUE(std::filesystem::exists(folder / "other"));
}

TEST_F(Platform, DatesAndTimesHaveTheSystemsForm) {
    // 3 February 2001, 16:05:06, in seconds since 1904.
    constexpr uint32_t kSeconds = 3064061106;
    const auto text = [](const Str255 bytes) {
        return std::string(reinterpret_cast<const char *>(bytes + 1), bytes[0]);
    };
    Str255 form;
    DateString(kSeconds, shortDate, form, nullptr);
    EXPECT_EQ(text(form), "02/03/01");
    TimeString(kSeconds, true, form, nullptr);
    EXPECT_EQ(text(form), "16:05:06");
    TimeString(kSeconds, false, form, nullptr);
    EXPECT_EQ(text(form), "16:05");

    // Local time, with or without daylight saving, or one second later.
    const time_t before = time(nullptr);
    uint32_t seconds;
    GetDateTime(&seconds);
    tm local;
    localtime_r(&before, &local);
    EXPECT_LE(seconds - 2082844800U - static_cast<uint32_t>(before + local.tm_gmtoff), 1U);
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
