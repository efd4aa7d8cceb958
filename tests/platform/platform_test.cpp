#include <sys/stat.h>
#include <sys/xattr.h>

#include <filesystem>
#include <fstream>

#include "platform/files.h"
#include "platform/memory.h"
#include "tests/support/scratch_folder.h"

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
    const Name name("a/b\212");  // the slash is the Mac's own, 0x8A is a with diaeresis
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
                 {std::string(64, 'n'), bdNamErr},
                 {std::string(63, 'n'), fnfErr},
                 {"sub", notAFileErr},
                 {"link", ioErr}};
    for (const auto &c : cases) {
        EXPECT_EQ(HOpen(volume, directory, Name(c.name), fsRdWrPerm, &ref), c.err) << c.name;
    }
    std::filesystem::create_symlink("elsewhere", folder / "dangling");
    EXPECT_EQ(HCreate(volume, directory, Name("dangling"), kCode, kCode), dupFNErr);
    EXPECT_FALSE(std::filesystem::exists(folder / "elsewhere"));
    EXPECT_EQ(HCreate(volume, 0, Name("x"), kCode, kCode), dirNFErr);
    EXPECT_EQ(HCreate(0, directory, Name("x"), kCode, kCode), nsvErr);
    std::filesystem::remove_all(folder);
    EXPECT_EQ(HCreate(volume, directory, Name("x"), kCode, kCode), dirNFErr);
    EXPECT_EQ(FindFolder(kOnSystemDisk, kPreferencesFolderType, true, &volume, &directory), fnfErr);
    EXPECT_FALSE(std::filesystem::exists(folder)) << "the folder is the host's to make";
}

}  // namespace
