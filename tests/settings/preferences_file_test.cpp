#include "settings/preferences_file.h"

#include <cstdio>
#include <cstring>
#include <fstream>

#include "imagestore/strings.h"
#include "photoshop/image_modes.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/script_host.h"
#include "tests/support/test_host.h"

namespace {

constexpr int64_t kFileSize = 53248;

class PreferencesFile : public ScratchFolder {
  protected:
    std::string Contents() const {
        std::ifstream file(folder / "WEMBpref", std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    void Replace(const std::string &contents) const {
        std::ofstream(folder / "WEMBpref", std::ios::binary) << contents;
    }

    // A run of the plug-in over a tiny picture; returns the radius that it recorded.
    double Run(std::vector<script::Item> action) {
        const TestDocument document = {plugInModeGrayScale, 8, 1, {0, 0, 2, 2}, {1, 2, 3, 4}, {}};
        PIDescriptorParameters parameters = script::Parameters(std::move(action), plugInDialogDontDisplay);
        EXPECT_EQ(RunPlugin(document, {true, -1, &parameters}).result, noErr);
        DisposeHandle(parameters.descriptor);
        return script::recorded.at(0).number;
    }

    std::string Checksum() const {
        const std::string command = "sha256sum " + (folder / "WEMBpref").string();
        FILE *output = popen(command.c_str(), "r");
        char sum[65] = {};
        EXPECT_EQ(fread(sum, 1, 64, output), 64u);
        pclose(output);
        return sum;
    }
};

const std::vector<script::Item> kRadius4 = {{FourCharCode("nRad"), typeFloat, 4}};

TEST_F(PreferencesFile, RunsWriteKnownFiles) {
    // A run that is cancelled in its dialog writes the defaults.
    const TestDocument document = {plugInModeGrayScale, 8, 1, {0, 0, 2, 2}, {1, 2, 3, 4}, {}};
    EXPECT_EQ(RunPlugin(document, {}).result, userCanceledErr);
    EXPECT_EQ(Contents().size(), static_cast<size_t>(kFileSize));
    EXPECT_EQ(Contents().substr(8, 8), std::string("\x00\x00\xC0\x40\x39\x8E\x63\x3C", 8));
    EXPECT_EQ(Checksum(), "2028c538b4fc739df21e7474a55e57ad03ae46d0b8d529517dc15df232993e2a");
    Run(kRadius4);
    EXPECT_EQ(Checksum(), "5f9df649be4dd88f4ec8d6380619fbb8d1694c4edec03ca518ade825dc688f5c");
}

TEST_F(PreferencesFile, RadiusIsRememberedFromRunToRun) {
    EXPECT_EQ(Run({}), 1) << "nothing remembered yet";
    EXPECT_EQ(Run({{FourCharCode("nRad"), typeFloat, 3.5}}), 3.5);
    EXPECT_EQ(Run({}), 3.5);
}

TEST_F(PreferencesFile, SlotsRepeatWhatLongerOnesLeft) {
    RunContext context = {};
    const char *texts[] = {"ABCDEFGH", "xy", ""};
    for (size_t i = 0; i < std::size(texts); ++i) {
        context.preferenceStrings[i] = AllocateCString(kTextSize);
        std::strcpy(context.preferenceStrings[i], texts[i]);
    }
    WritePreferences(&context, 0);
    for (const char *text : context.preferenceStrings) {
        EXPECT_EQ(text, nullptr);
    }
    const std::string file = Contents();
    ASSERT_EQ(file.size(), static_cast<size_t>(kFileSize));
    const char *slots[] = {"ABCDEFGH", "xy\0DEFGH", "\0y\0DEFGH", "\0y\0DEFGH"};
    for (size_t i = 0; i < std::size(slots); ++i) {
        EXPECT_EQ(file.substr(1024 * (i + 1), 9), std::string(slots[i], 9)) << i;
    }

    const int16_t ref = ReadPreferences(&context);
    EXPECT_STREQ(context.preferenceStrings[0], texts[0]);
    EXPECT_STREQ(context.preferenceStrings[1], texts[1]);
    EXPECT_EQ(context.preferenceStrings[2], nullptr);
    WritePreferences(&context, ref);
}

// Whatever stands in the file, a run reads what it can and leaves a whole file.
TEST_F(PreferencesFile, DamagedFilesAreReadAsFarAsTheyGo) {
    std::string whole(kFileSize, '\0');
    for (size_t i = 0; i < whole.size(); ++i) {
        whole[i] = static_cast<char>('A' + i % 23);
    }
    const struct {
        std::string contents;
        bool strings;
        bool tail;
    } cases[] = {
        {"", false, false},
        {whole.substr(0, 1000), false, false},
        {whole.substr(0, 1024), false, false},
        {whole.substr(0, 3000), true, false},
        {whole, true, true},
        {whole + "and more", true, true},
    };
    for (const auto &c : cases) {
        Replace(c.contents);
        RunContext context = {};
        const int16_t ref = ReadPreferences(&context);
        EXPECT_NE(ref, 0);
        EXPECT_EQ(context.preferenceStrings[0] != nullptr, c.strings) << c.contents.size();
        if (c.strings) {
            EXPECT_EQ(std::string(context.preferenceStrings[0]), whole.substr(1024, 513));
        }
        EXPECT_EQ(context.preferencesTail[0], c.tail ? static_cast<uint8_t>(whole[50176]) : 0);
        WritePreferences(&context, ref);
        EXPECT_EQ(Contents().size(), std::max(c.contents.size(), static_cast<size_t>(kFileSize)));
        EXPECT_EQ(Contents().substr(1024 + 513, 1), std::string(1, '\0'));
        // Behind the 48 slots and the tail, what was there stays.
        EXPECT_EQ(Contents().substr(kFileSize),
                  c.contents.substr(std::min<size_t>(c.contents.size(), kFileSize)));
    }
    // What is no preferences file at all, but cannot be written either, stays.
    std::filesystem::remove(folder / "WEMBpref");
    std::filesystem::create_directory(folder / "WEMBpref");
    RunContext context = {};
    EXPECT_EQ(ReadPreferences(&context), 0);
    WritePreferences(&context, 0);
    EXPECT_TRUE(std::filesystem::is_directory(folder / "WEMBpref"));
}

}  // namespace
