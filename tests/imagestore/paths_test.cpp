#include "imagestore/paths.h"

#include <cstring>
#include <fstream>

#include "platform/native_paths.h"
#include "tests/support/scratch_folder.h"

namespace {

class Paths : public ScratchFolder {
  protected:
    void SetUp() override { faults::MountVolume("Disk", folder.generic_string()); }
};

constexpr OSType kCode = FourCharCode("ttxt");

TEST_F(Paths, FilesAreReachedByTheirColonPaths) {
    std::filesystem::create_directories(folder / "Logs");
    int32_t made;
    FSSpec within;
    CStringToFSSpec("Disk:Logs:M\212rz/1", &within);
    ASSERT_EQ(FSpDirCreate(&within, smSystemScript, &made), noErr);
    const struct {
        const char *path;
        OSErr created;
        const char *native;  // "" for a name that systems spell differently
    } cases[] = {
        {"Disk:a.txt", noErr, "a.txt"},         {"Disk:Logs:run.txt", noErr, "Logs/run.txt"},
        {"Disk:Logs:M\212rz/1:x", noErr, ""},   {"Disk:Missing:run.txt", dirNFErr, nullptr},
        {"Elsewhere:run.txt", nsvErr, nullptr}, {"Disk:Logs:..", bdNamErr, nullptr},
        {"Disk:Logs::x", bdNamErr, nullptr},    {"Disk:a.txt", dupFNErr, "a.txt"},
        {"Disk:a.txt:x", dirNFErr, nullptr},    {"", bdNamErr, nullptr},
    };
    for (const auto &c : cases) {
        const OSErr err = FSCreatePath(c.path, kCode, kCode);
        EXPECT_EQ(err, c.created) << c.path;
        int16_t ref;
        EXPECT_EQ(FSOpenPath(c.path, &ref) == noErr, c.native != nullptr) << c.path;
        if (c.native != nullptr) {
            EXPECT_TRUE(std::filesystem::exists(folder / c.native)) << c.path;
            FSClose(ref);
        }
    }
    EXPECT_EQ(FSDeletePath("Disk:Logs:run.txt"), noErr);
    EXPECT_EQ(FSDeletePath("Disk:Logs:run.txt"), fnfErr);
    EXPECT_NE(FSDeletePath(nullptr), noErr);
    EXPECT_NE(FSCreatePath(nullptr, kCode, kCode), noErr);

    // Only the low 8 bits of a long path's length count.
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
    std::filesystem::create_directories(folder / "Logs");
    std::filesystem::create_directory(folder / "LongFolderName");
    FSSpec spec;
    const struct {
        const char *path;
        int32_t size;
        const char *cut;
    } cases[] = {{"Disk:Logs:run.txt", 18, "Disk:Logs:run.txt"},
                 {"Disk:Logs:run.txt", 17, "Disk:Logs:run.t\xC9"},
                 {"Disk:Logs:run.txt", 11, "Disk:Logs\xC9"},
                 {"Disk:Logs:run.txt", 6, "Disk\xC9"},
                 {"Disk:Logs:run.txt", 2, "\xC9"},
                 {"Disk:Logs:run.txt", 1, ""},
                 {"Disk:Logs:run.txt", 0, "?"},
                 {"Disk:LongFolderName:a", 20, "Disk:LongFolderNam\xC9"}};
    for (const auto &c : cases) {
        char path[32] = "?";
        path[c.size] = c.size == 0 ? '?' : '#';
        CStringToFSSpec(c.path, &spec);
        FSSpecToCString(&spec, path, c.size);
        EXPECT_STREQ(path, c.cut) << c.size;
        EXPECT_EQ(path[c.size], c.size == 0 ? '?' : '#') << c.size;
    }
    CStringToFSSpec("Disk:Logs:run.txt", &spec);
    std::string native;
    EXPECT_EQ(NativePathFromSpec(spec, &native), noErr);
    EXPECT_EQ(native, (folder / "Logs/run.txt").generic_string());
    EXPECT_EQ(SpecFromNativePath(native, &spec), fnfErr);
    char path[514];
    FSSpecToCString(&spec, path, sizeof path);
    const std::string root =
        folder.root_name().empty() ? "Macintosh HD" : folder.root_name().string().substr(0, 1);
    EXPECT_EQ(std::string(path).substr(0, root.size() + 1), root + ":");
    CStringToFSSpec((root + ":any").c_str(), &spec);
    EXPECT_EQ(spec.parID, 2);
}

// Longer than the buffers in which a run keeps paths, and cut at every position.
TEST_F(Paths, LongerThanBuffersAreCut) {
    FSSpec spec;
    char path[514];
    std::filesystem::path longPath = folder;
    std::string whole = "Disk:";
    for (int level = 0; level < 10; ++level) {
        longPath /= std::string(60, static_cast<char>('a' + level));
        whole += longPath.filename().string() + ":";
    }
    std::filesystem::create_directories(longPath);
    FSSpec onDisk;
    CStringToFSSpec("Disk:any", &onDisk);
    ASSERT_EQ(SpecFromNativePath((longPath / "name").string(), &spec), fnfErr);
    spec.vRefNum = onDisk.vRefNum;
    const std::string withName = whole + "name";
    for (size_t size = 2; size < withName.size() + 5; ++size) {
        std::vector<char> text(size + 1, '#');
        FSSpecToCString(&spec, text.data(), static_cast<int32_t>(size));
        EXPECT_EQ(text.data(), withName.size() < size ? withName : withName.substr(0, size - 2) + "\xC9");
        EXPECT_EQ(text[size], '#') << size;
        // As many whole components as fit.
        PathFromDirID(spec.parID, spec.vRefNum, text.data(), static_cast<int32_t>(size));
        EXPECT_EQ(text.data(), whole.substr(0, whole.substr(0, size - 1).rfind(':') + 1)) << size;
        EXPECT_EQ(text[size], '#') << size;
    }

    // Exactly as many levels as are followed, and one more.
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
