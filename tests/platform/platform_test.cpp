
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>

#include "platform/date_time.h"
#include "platform/files.h"
#include "platform/mac_roman.h"
#include "platform/memory.h"
#include "platform/native_paths.h"
#include "tests/support/platform_fixture.h"
#include "tests/support/test_images.h"

namespace {

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
    const std::set<std::string> names = Names();
    ASSERT_EQ(names.size(), 1u);
    const auto path = folder / std::filesystem::directory_iterator(folder)->path();

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
                 {"sub", notAFileErr}};
    for (const auto &c : cases) {
        EXPECT_EQ(HOpen(volume, directory, Name(c.name), fsRdWrPerm, &ref), c.err) << c.name;
        if (c.err == bdNamErr) {
            EXPECT_EQ(HCreate(volume, directory, Name(c.name), kCode, kCode), bdNamErr) << c.name;
            EXPECT_EQ(HDelete(volume, directory, Name(c.name)), bdNamErr) << c.name;
        }
    }
    EXPECT_EQ(HCreate(volume, 0, Name("x"), kCode, kCode), dirNFErr);
    EXPECT_EQ(HCreate(0, directory, Name("x"), kCode, kCode), nsvErr);
    std::filesystem::remove_all(folder);
    EXPECT_EQ(HCreate(volume, directory, Name("x"), kCode, kCode), dirNFErr);
    EXPECT_EQ(FindFolder(kOnSystemDisk, kPreferencesFolderType, true, &volume, &directory), fnfErr);
    EXPECT_FALSE(std::filesystem::exists(folder)) << "looking for it does not make it";
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
    EXPECT_EQ(SpecFromNativePath(Path("sub/..\xC0\xAFother"), &spec), fnfErr);
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
    tm local = *std::localtime(&before);
    tm universal = *std::gmtime(&before);
    universal.tm_isdst = local.tm_isdst;
    const auto offset = static_cast<uint32_t>(mktime(&local) - mktime(&universal));
    EXPECT_LE(seconds - 2082844800U - static_cast<uint32_t>(before) - offset, 1U);
}

}  // namespace
