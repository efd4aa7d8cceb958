// What Windows alone has: drives, names, errors, and files that others have open.
#include <windows.h>

#include "platform/locks.h"
#include "platform/native_paths.h"
#include "platform/resources.h"
#include "platform/windows/errors.h"
#include "platform/windows/texts.h"
#include "tests/support/held_lock.h"
#include "tests/support/platform_fixture.h"

namespace {

TEST_F(Platform, SystemErrorsHaveTheirCodes) {
    const std::pair<DWORD, OSErr> codes[] = {
        {ERROR_FILE_NOT_FOUND, -43},    {ERROR_PATH_NOT_FOUND, -43},      {ERROR_DIRECTORY, -120},
        {ERROR_FILE_EXISTS, -48},       {ERROR_ACCESS_DENIED, -54},       {ERROR_WRITE_PROTECT, -44},
        {ERROR_DISK_FULL, -34},         {ERROR_HANDLE_DISK_FULL, -34},    {1295, -34},
        {ERROR_SHARING_VIOLATION, -47}, {ERROR_TOO_MANY_OPEN_FILES, -42}, {ERROR_INVALID_HANDLE, -51},
        {ERROR_INVALID_NAME, -37},      {ERROR_NOT_READY, -36},
    };
    for (const auto &[error, code] : codes) {
        EXPECT_EQ(windows::ErrorFromCode(error), code) << error;
    }
}

// Without a limit to their length, and with names that mean nothing else: no device, and no point is dropped.
TEST(NativePaths, AreTakenLiterally) {
    const std::pair<std::string, std::wstring> paths[] = {
        {"C:/a b/con", L"\\\\?\\C:\\a b\\con"},
        {"C:/", L"\\\\?\\C:\\"},
        {"//server/share/\u00e4.", L"\\\\?\\UNC\\server\\share\\\u00e4."},
    };
    for (const auto &[path, literal] : paths) {
        EXPECT_EQ(windows::SystemPath(path), literal) << path;
        EXPECT_EQ(windows::PathFromSystem(literal), path);
    }
    EXPECT_EQ(windows::PathFromSystem(L"\\\\server\\share"), "//server/share");
}

// Every name of a Mac can be had, and means one file, whatever Windows makes of such names elsewhere.
TEST_F(Platform, NamesThatWindowsDoesNotHaveComeBackTheSame) {
    const Name names[] = {Name("a/b\212"), Name("\"*<>?\\|"), Name("space "),
                          Name("period."), Name("\001\037"),  Name(std::string(63, '\212'))};
    size_t count = 0;
    for (const Name &name : names) {
        SCOPED_TRACE(name.bytes[1]);
        EXPECT_EQ(HCreate(volume, directory, name, kCode, kCode), noErr);
        EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}),
                  static_cast<int64_t>(++count));
        FSSpec spec = {volume, directory, {}};
        std::copy_n(name.bytes, name.bytes[0] + 1, spec.name);
        std::string path;
        ASSERT_EQ(NativePathFromSpec(spec, &path), noErr);
        EXPECT_EQ(SpecFromNativePath(path, &spec), noErr);
        EXPECT_EQ(spec.parID, directory);
        EXPECT_TRUE(std::equal(spec.name, spec.name + spec.name[0] + 1, name.bytes));
        EXPECT_EQ(HDelete(volume, directory, name), noErr);
        --count;
    }
}

TEST_F(Platform, EveryDriveIsAVolume) {
    FSSpec spec;
    EXPECT_EQ(FSMakeFSSpec(0, 0, Name("C:windows:nothing"), &spec), fnfErr);
    const int16_t system = spec.vRefNum;
    EXPECT_EQ(system, -1);
    EXPECT_EQ(FSMakeFSSpec(0, 0, Name("Q:nothing"), &spec), nsvErr);
    EXPECT_EQ(SpecFromNativePath("c:\\windows\\NOTHING", &spec), fnfErr);
    EXPECT_EQ(spec.vRefNum, system);
    // One folder, however it is spelled.
    std::filesystem::create_directory(folder / "Folder");
    int32_t ids[3];
    int i = 0;
    for (const char *name : {"Folder/x", "folder\\x", "./FOLDER//x"}) {
        EXPECT_EQ(SpecFromNativePath(Path(name), &spec), fnfErr) << name;
        ids[i++] = spec.parID;
    }
    EXPECT_EQ(ids[0], ids[1]);
    EXPECT_EQ(ids[0], ids[2]);
}

TEST_F(Platform, PreferencesFolderIsFoundThroughItsVariables) {
    const std::wstring data = windows::Variable(L"APPDATA"), profile = windows::Variable(L"USERPROFILE");
    const std::filesystem::path long300 =
        folder / std::string(100, 'a') / std::string(100, 'b') / std::string(100, 'c');
    const struct {
        std::filesystem::path own, data, profile, found;
    } cases[] = {{folder / "own", folder / "data", folder / "profile", folder / "own"},
                 {"", folder / "data", folder / "profile", folder / "data/hymedian/Preferences"},
                 {"", "", folder / "profile", folder / "profile/AppData/Roaming/hymedian/Preferences"},
                 {long300, "", "", long300},
                 {"", "", "", ""}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.found.string());
        SetVariable("HYMEDIAN_PREFERENCES", c.own);
        SetVariable("APPDATA", c.data);
        SetVariable("USERPROFILE", c.profile);
        EXPECT_EQ(PreferencesPath(), c.found.generic_string());
        EXPECT_EQ(FindFolder(kOnSystemDisk, kPreferencesFolderType, false, &volume, &directory), fnfErr);
        MakePreferencesFolder();
        const bool some = !c.found.empty();
        EXPECT_EQ(FindFolder(kOnSystemDisk, kPreferencesFolderType, false, &volume, &directory),
                  some ? noErr : fnfErr);
        EXPECT_EQ(HCreate(volume, directory, Name("x"), kCode, kCode), some ? noErr : nsvErr);
        EXPECT_EQ(HDelete(volume, directory, Name("x")), some ? noErr : nsvErr);
    }
    // Paths as long as this one are for the system's own calls only.
    for (std::filesystem::path part = long300; part != folder; part = part.parent_path()) {
        EXPECT_NE(RemoveDirectoryW(windows::SystemPath(part.generic_string()).c_str()), 0);
    }
    SetEnvironmentVariableW(L"APPDATA", data.c_str());
    SetEnvironmentVariableW(L"USERPROFILE", profile.c_str());
}

// The name is free at once, also for others' handles and for folders' contents.
TEST_F(Platform, OpenFilesAreDeletedAndTheirNamesTakenAgain) {
    int16_t first, second;
    ASSERT_EQ(HCreate(volume, directory, Name("file"), kCode, kCode), noErr);
    ASSERT_EQ(HOpen(volume, directory, Name("file"), fsRdWrPerm, &first), noErr);
    int64_t count = 3;
    EXPECT_EQ(FSWrite(first, &count, "old"), noErr);
    EXPECT_EQ(HDelete(volume, directory, Name("file")), noErr);
    ASSERT_EQ(HCreate(volume, directory, Name("file"), kCode, kCode), noErr);
    ASSERT_EQ(HOpen(volume, directory, Name("file"), fsRdWrPerm, &second), noErr);
    int64_t size = -1;
    EXPECT_EQ(GetEOF(second, &size), noErr);
    EXPECT_EQ(size, 0);
    char text[3];
    EXPECT_EQ(SetFPos(first, fsFromStart, 0), noErr);
    EXPECT_EQ(FSRead(first, &count, text), noErr);
    EXPECT_EQ(std::string(text, 3), "old");
    FSClose(first);
    FSClose(second);
    EXPECT_EQ(Names(), (std::set<std::string>{"file"}));
}

// Wine lets its root write to anything.
TEST_F(Platform, FilesThatMayOnlyBeReadAreOpenedForThat) {
    WriteBytes("shown", "text");
    const std::wstring path = (folder / "shown").wstring();
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    const HANDLE writer = CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    int16_t ref;
    if (writer == INVALID_HANDLE_VALUE) {
        EXPECT_EQ(HOpen(volume, directory, Name("shown"), fsRdWrPerm, &ref), permErr);
        ASSERT_EQ(HOpen(volume, directory, Name("shown"), fsCurPerm, &ref), noErr);
        int64_t count = 4;
        char read[4];
        EXPECT_EQ(FSRead(ref, &count, read), noErr);
        EXPECT_NE(FSWrite(ref, &count, read), noErr);
        FSClose(ref);
    }
    CloseHandle(writer);
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    // And one that another program keeps to itself.
    const HANDLE other = CreateFileW(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_EQ(HOpen(volume, directory, Name("shown"), fsCurPerm, &ref), fBsyErr);
    EXPECT_EQ(HDelete(volume, directory, Name("shown")), fBsyErr);
    CloseHandle(other);
}

TEST_F(Platform, LocksOfOthersAreNotWaitedForLong) {
    ASSERT_EQ(HCreate(volume, directory, Name("file"), kCode, kCode), noErr);
    int16_t ref;
    ASSERT_EQ(HOpen(volume, directory, Name("file"), fsRdWrPerm, &ref), noErr);
    FolderLock lock = -1;
    {
        const HeldLock other(folder / "file");
        const DWORD start = GetTickCount();
        EXPECT_EQ(LockFile(ref), fBsyErr);
        EXPECT_GE(GetTickCount() - start, 1900u);
        EXPECT_EQ(LockFile(ref), fBsyErr);
        EXPECT_LT(GetTickCount() - start, 3000u) << "only tried after a wait in vain";
    }
    EXPECT_EQ(LockFile(ref), noErr);
    EXPECT_TRUE(IsLocked(folder / "file"));
    UnlockFile(ref);
    EXPECT_FALSE(IsLocked(folder / "file"));
    FSClose(ref);
    {
        const HeldLock other(folder);
        EXPECT_EQ(LockFolder(volume, directory, &lock), fBsyErr);
    }
    EXPECT_EQ(LockFolder(volume, directory, &lock), noErr);
    EXPECT_TRUE(IsLocked(folder));
    UnlockFolder(lock);
    EXPECT_FALSE(IsLocked(folder));
}

TEST_F(Platform, TheModulesOwnResourcesAreThere) {
    EXPECT_EQ(GetResource(FourCharCode("DITL"), 9534), nullptr);
    OfferOwnResources();
    EXPECT_NE(GetResource(FourCharCode("DITL"), 9534), nullptr);
    WithdrawResources();
    EXPECT_EQ(GetResource(FourCharCode("DITL"), 9534), nullptr);
}

}  // namespace
