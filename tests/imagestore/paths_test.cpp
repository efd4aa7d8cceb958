#include "imagestore/paths.h"

#include <cstring>
#include <fstream>

#include "platform/posix_paths.h"
#include "tests/support/scratch_folder.h"

namespace {

class Paths : public ScratchFolder {
  protected:
    void SetUp() override { faults::MountVolume("Disk", folder); }
};

constexpr OSType kCode = FourCharCode("ttxt");

TEST_F(Paths, FilesAreReachedByTheirColonPaths) {
    std::filesystem::create_directories(folder / "Logs" / "M\u00E4rz:1");
    const struct {
        const char *path;
        OSErr created;
        const char *posix;
    } cases[] = {
        {"Disk:a.txt", noErr, "a.txt"},
        {"Disk:Logs:run.txt", noErr, "Logs/run.txt"},
        {"Disk:Logs:M\212rz/1:x", noErr, "Logs/M\u00E4rz:1/x"},
        {"Disk:Missing:run.txt", dirNFErr, nullptr},
        {"Elsewhere:run.txt", nsvErr, nullptr},
        {"Disk:Logs:..", bdNamErr, nullptr},
        {"Disk:Logs::x", bdNamErr, nullptr},
        {"Disk:a.txt", dupFNErr, "a.txt"},
        {"Disk:a.txt:x", dirNFErr, nullptr},
        {"", bdNamErr, nullptr},
    };
    for (const auto &c : cases) {
        const OSErr err = FSCreatePath(c.path, kCode, kCode);
        EXPECT_EQ(err, c.created) << c.path;
        int16_t ref;
        EXPECT_EQ(FSOpenPath(c.path, &ref) == noErr, c.posix != nullptr) << c.path;
        if (c.posix != nullptr) {
            EXPECT_TRUE(std::filesystem::exists(folder / c.posix)) << c.path;
            FSClose(ref);
        }
    }
    EXPECT_EQ(FSDeletePath("Disk:Logs:run.txt"), noErr);
    EXPECT_EQ(FSDeletePath("Disk:Logs:run.txt"), fnfErr);
    EXPECT_NE(FSDeletePath(nullptr), noErr);
    EXPECT_NE(FSCreatePath(nullptr, kCode, kCode), noErr);

    // A path of 256 and some characters counts by the low 8 bits of its length.
    const std::string longPath = "Disk:a.txt" + std::string(256, 'x');
    int16_t ref;
    ASSERT_EQ(FSOpenPath(longPath.c_str(), &ref), noErr);
    FSClose(ref);
}

TEST_F(Paths, AppendingStartsAtTheEndAndCountsLines) {
    const std::pair<std::string, int32_t> cases[] = {
        {"", 0}, {"a\rb\rc\r", 3}, {"no end", 0}, {std::string(40000, '\r') + "x", 40000}};
    for (const auto &[text, lines] : cases) {
        std::ofstream(folder / "log") << text;
        int16_t ref;
        int32_t count = -1;
        ASSERT_EQ(FSOpenAndAppendPath("Disk:log", &ref, &count), noErr);
        EXPECT_EQ(count, lines);
        int64_t bytes = 1;
        FSWrite(ref, &bytes, "!");
        FSClose(ref);
        EXPECT_EQ(std::filesystem::file_size(folder / "log"), text.size() + 1);
    }
    int16_t ref;
    int32_t count = -1;
    EXPECT_EQ(FSOpenAndAppendPath("Disk:none", &ref, &count), fnfErr);
    EXPECT_EQ(count, 0);
}

TEST_F(Paths, SplitAtTheLastColonAndCutToSize) {
    const struct {
        void (*split)(const char *, char *, int32_t);
        const char *path;
        int32_t size;
        const char *part;
    } cases[] = {
        {FileNameFromPath, "Disk:Logs:run.txt", 8, ":run.txt"},
        {FileNameFromPath, "Disk:Logs:run.txt", 7, ":run.t\xC9"},
        {FileNameFromPath, "run.txt", 20, "run.txt"},
        {FileNameFromPath, nullptr, 20, ""},
        {StripFileNameOffPath, "Disk:Logs:run.txt", 10, "Disk:Logs:"},
        {StripFileNameOffPath, "Disk:Logs:run.txt", 7, "Disk:L\xC9"},
        {StripFileNameOffPath, "run.txt", 20, "r"},
        {StripFileNameOffPath, "", 20, ""},
        {StripFileNameOffPath, nullptr, 20, ""},
    };
    for (const auto &c : cases) {
        char part[32] = "untouched";
        c.split(c.path, part, c.size);
        EXPECT_STREQ(part, c.part) << c.size;
    }
}

TEST_F(Paths, SpecificationsBecomeFullPaths) {
    std::filesystem::create_directory(folder / "Logs");
    FSSpec spec;
    CStringToFSSpec("Disk:Logs:run.txt", &spec);
    const std::pair<int32_t, const char *> cases[] = {{18, "Disk:Logs:run.txt"},
                                                      {17, "Disk:Logs:run.t\xC9"},
                                                      {11, "Disk:\xC9"},
                                                      {6, "Disk\xC9"},
                                                      {2, "\xC9"}};
    for (const auto &[size, expected] : cases) {
        char path[32];
        FSSpecToCString(&spec, path, size);
        if (size >= 17) {
            EXPECT_STREQ(path, expected);
        }
        EXPECT_LT(std::strlen(path), static_cast<size_t>(size));
    }
    std::string posix;
    EXPECT_EQ(PosixPathFromSpec(spec, &posix), noErr);
    EXPECT_EQ(posix, folder / "Logs/run.txt");
    EXPECT_EQ(SpecFromPosixPath(posix, &spec), fnfErr);
    EXPECT_EQ(spec.vRefNum, -1);
    char path[514];
    FSSpecToCString(&spec, path, sizeof path);
    EXPECT_EQ(std::string(path).substr(0, 13), "Macintosh HD:");

    // Folders of exactly as many levels as are climbed, and one more.
    std::filesystem::path deep = folder;
    std::string colons = "Disk:";
    for (int level = 0; level < 64; ++level) {
        deep /= "d";
        colons += "d:";
    }
    std::filesystem::create_directories(deep / "e");
    CStringToFSSpec((colons + "file").c_str(), &spec);
    EXPECT_EQ(PathFromDirID(spec.parID, spec.vRefNum, path, sizeof path), noErr);
    EXPECT_EQ(path, colons);
    CStringToFSSpec((colons + "e:file").c_str(), &spec);
    EXPECT_EQ(PathFromDirID(spec.parID, spec.vRefNum, path, sizeof path), fnfErr);
    EXPECT_STREQ(path, "");
}

}  // namespace
