#include "settings/preferences_file.h"

#include <algorithm>

#include "imagestore/strings.h"
#include "photoshop/image_modes.h"
#include "tests/support/file_facts.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_host.h"
#include "tests/support/test_images.h"

namespace {

constexpr int64_t kFileSize = 53248;

class PreferencesFile : public ScratchFolder {
  protected:
    std::string Contents() const { return ContentsOf(folder / "WEMBpref"); }

    void Replace(const std::string &contents) const { WriteBytes("WEMBpref", contents); }

    // Runs the plug-in over a tiny picture; returns the radius that it recorded.
    double Run(std::vector<script::Item> action) {
        const TestDocument document = {plugInModeGrayScale, 8, 1, {0, 0, 2, 2}, {1, 2, 3, 4}, {}};
        EXPECT_EQ(RunScripted(document, std::move(action)).result, noErr);
        return script::recorded.at(0).number;
    }

    uint32_t Checksum() const {
        const std::string contents = Contents();
        return Crc32({contents.begin(), contents.end()});
    }
};

const std::vector<script::Item> kRadius4 = {{FourCharCode("nRad"), typeFloat, 4}};

TEST_F(PreferencesFile, RunsWriteKnownFiles) {
    // A run cancelled in its dialog writes the defaults.
    const TestDocument document = {plugInModeGrayScale, 8, 1, {0, 0, 2, 2}, {1, 2, 3, 4}, {}};
    EXPECT_EQ(RunPlugin(document, {}).result, userCanceledErr);
    EXPECT_EQ(Contents().size(), static_cast<size_t>(kFileSize));
    EXPECT_EQ(Contents().substr(8, 8), std::string("\x00\x00\xC0\x40\x39\x8E\x63\x3C", 8));
    EXPECT_EQ(Checksum(), 2696430800u);
    Run(kRadius4);
    EXPECT_EQ(Checksum(), 2002853699u);
}

TEST_F(PreferencesFile, RadiusIsRememberedFromRunToRun) {
    EXPECT_EQ(Run({}), 1) << "nothing remembered yet";
    EXPECT_EQ(Run({{FourCharCode("nRad"), typeFloat, 3.5}}), 3.5);
    EXPECT_EQ(Run({}), 3.5);
}

char *Text(const std::string &text) {
    char *copy = AllocateCString(static_cast<int32_t>(text.size()) + 1);
    std::copy(text.begin(), text.end(), copy);
    return copy;
}

TEST_F(PreferencesFile, SlotsRepeatWhatLongerOnesLeft) {
    RunContext context = {};
    const std::pair<size_t, std::string> texts[] = {
        {0, "ABCDEFGH"}, {1, "xy"}, {2, ""}, {4, std::string(600, 'q')}, {6, "Z"}};
    for (const auto &[slot, text] : texts) {
        context.preferenceStrings[slot] = Text(text);
    }
    std::fill_n(context.preferencesHeader, kPreferenceHeaderSize, 0x11);
    std::fill_n(context.preferencesTail, kPreferenceTailSize, 0xEE);
    // A slot takes at most 513 characters and a zero, over what the slot before left.
    std::string expected(1024, '\x11');
    std::string slotBytes(1024, '\0');
    for (size_t slot = 0; slot < 48; ++slot) {
        const auto *text = std::find_if(std::begin(texts), std::end(texts),
                                        [slot](const auto &known) { return known.first == slot; });
        const std::string taken = text == std::end(texts) ? "" : text->second.substr(0, 513);
        slotBytes.replace(0, taken.size() + 1, taken + '\0');
        slotBytes[513] = '\0';
        expected += slotBytes;
    }
    expected += std::string(3072, '\xEE');
    WritePreferences(&context, 0);
    for (const char *text : context.preferenceStrings) {
        EXPECT_EQ(text, nullptr);
    }
    EXPECT_TRUE(Contents() == expected);

    // What is read replaces what was there; an empty slot changes nothing.
    for (const size_t slot : {0U, 2U}) {
        context.preferenceStrings[slot] = Text("old");
    }
    const int16_t ref = ReadPreferences(&context);
    const char *read[] = {"ABCDEFGH", "xy", "old"};
    for (size_t slot = 0; slot < std::size(read); ++slot) {
        EXPECT_STREQ(context.preferenceStrings[slot], read[slot]);
    }
    EXPECT_EQ(std::string(context.preferenceStrings[4]), std::string(513, 'q'));
    EXPECT_EQ(context.preferencesTail[3071], 0xEE);
    // A header that cannot be written becomes zeros; the slots keep their places.
    faults::FailFileCall(2, ioErr);
    WritePreferences(&context, ref);
    EXPECT_EQ(Contents().size(), expected.size());
    EXPECT_TRUE(Contents().substr(0, 2048) == std::string(1024, '\0') + expected.substr(1024, 1024));
}

TEST_F(PreferencesFile, NewFilesHaveTypeAndCreator) {
    RunContext context = {};
    WritePreferences(&context, 0);
    if (const std::string codes = TypeAndCreator(folder / "WEMBpref"); !codes.empty()) {
        EXPECT_EQ(codes, "TYPECREA");
    }
}

// Whatever the file contains, a run reads what it can and leaves a whole file.
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
        // Anything after the 48 slots and the tail is left in place.
        EXPECT_EQ(Contents().substr(kFileSize),
                  c.contents.substr(std::min<size_t>(c.contents.size(), kFileSize)));
    }
    // A folder in the file's place, which cannot be written, stays.
    std::filesystem::remove(folder / "WEMBpref");
    std::filesystem::create_directory(folder / "WEMBpref");
    RunContext context = {};
    context.preferenceStrings[5] = Text("lost");
    EXPECT_EQ(ReadPreferences(&context), 0);
    WritePreferences(&context, 0);
    EXPECT_EQ(context.preferenceStrings[5], nullptr);
    EXPECT_TRUE(std::filesystem::is_directory(folder / "WEMBpref"));
}

}  // namespace
