#include "settings/key_names.h"

#include "hybridmedian/public.h"
#include "imagestore/strings.h"
#include "platform/files.h"
#include "platform/native_paths.h"
#include "platform/resources.h"
#include "resources/key_name_table.h"
#include "settings/setting_dump.h"
#include "tests/support/dates.h"
#include "tests/support/key_name_table.h"
#include "tests/support/scratch_folder.h"

namespace {

class KeyNames : public ScratchFolder {};

TEST_F(KeyNames, UnitsFollowTheirCode) {
    AddKeyNameTable({{"aaaa", "Width", "cur1"},
                     {"bbbb", "Area", "cur2"},
                     {"cccc", "Volume", "cur3"},
                     {"dddd", "Frequency", "cur-"},
                     {"eeee", "Count", "none"},
                     {"ffff", "Blank", "blan"},
                     {"gggg", "Secret", "omit"},
                     {"hhhh", "Angle", "degrees"},
                     {"aaaa", "Shadowed", "none"},
                     {"iiii", std::string(43, 'n'), "0123456789abcdef"}});
    const std::string whole = std::string(43, 'n') + "0123456789abcde";  // cut off by the record's last byte
    const struct {
        OSType key;
        int32_t unitIndex;
        OSErr err;
        const char *name;
        const char *units;
    } cases[] = {
        {FourCharCode("aaaa"), 0, noErr, "Width", "(px)"},
        {FourCharCode("aaaa"), 1, noErr, "Width", "(\265m)"},
        {FourCharCode("aaaa"), 4, noErr, "Width", "(m )"},
        {FourCharCode("bbbb"), 3, noErr, "Area", "(cm^2)"},
        {FourCharCode("cccc"), 10, noErr, "Volume", "(nm^3)"},
        {FourCharCode("dddd"), 2, noErr, "Frequency", "(mm^-1)"},
        {FourCharCode("aaaa"), 11, noErr, "Width", "(in)"},
        {FourCharCode("aaaa"), -1, noErr, "Width", "(in)"},
        {FourCharCode("eeee"), 0, noErr, "Count", ""},
        {FourCharCode("ffff"), 0, noErr, "Blank", ""},
        {FourCharCode("hhhh"), 0, noErr, "Angle", "degrees"},
        {FourCharCode("gggg"), 0, fnfErr, "Secret", "omit"},
        {FourCharCode("iiii"), 0, noErr, whole.c_str(), "0123456789abcde"},
    };
    for (const auto &c : cases) {
        char name[kKeyNameSize], units[kKeyNameSize];
        EXPECT_EQ(_LookupParamKeyName(c.key, name, units, c.unitIndex), c.err) << c.key;
        EXPECT_STREQ(name, c.name);
        EXPECT_STREQ(units, c.units);
        EXPECT_EQ(_LookupParamKeyName(c.key, nullptr, nullptr, c.unitIndex), c.err);
    }
    EXPECT_EQ(_LookupParamKeyName(FourCharCode("Key "), nullptr, nullptr, 0), fnfErr)
        << "the heading is no record";
    EXPECT_EQ(_LookupParamKeyName(FourCharCode("zzzz"), nullptr, nullptr, 0), fnfErr);
    faults::RemoveResources();
    EXPECT_EQ(_LookupParamKeyName(FourCharCode("aaaa"), nullptr, nullptr, 0), fnfErr);
    faults::AddResource(FourCharCode("TEXT"), 9999, std::vector<uint8_t>(100, 'a'));
    EXPECT_EQ(_LookupParamKeyName(FourCharCode("aaaa"), nullptr, nullptr, 0), fnfErr) << "a record cut short";
}

TEST_F(KeyNames, RadiusIsNamedByThePlugin) {
    faults::AddResource(FourCharCode("TEXT"), kKeyNameTableID, KeyNameTable());
    char name[kKeyNameSize], units[kKeyNameSize];
    EXPECT_EQ(_LookupParamKeyName(FourCharCode("nRad"), name, units, 0), noErr);
    EXPECT_STREQ(name, "Radius");
    EXPECT_STREQ(units, "pixels");
}

TEST_F(KeyNames, LineEndsCarryDateAndTime) {
    AddKeyNameTable({{"crlf", "End", "crlf"}});
    char name[kKeyNameSize], units[kKeyNameSize] = "x";
    EXPECT_EQ(_LookupParamKeyName(FourCharCode("crlf"), name, units, 0), noErr);
    EXPECT_EQ(WithoutDates(name), "NOW") << name;
    EXPECT_STREQ(units, "");
}

TEST_F(KeyNames, SettingsAreDumpedByKind) {
    SPBlock *block = _AllocateSPBlock(22);
    InitializeSPSettings(block, 0, false, false);
    char longText[kTextSize] = {};
    std::fill_n(longText, 300, 'x');
    AddSPInputSettingFloat(block, FourCharCode("nRad"), 0, 4, 2.5f);
    AddSPInputSettingLong(block, FourCharCode("long"), -5, 5, 1);
    AddSPInputSettingRadio(block, FourCharCode("shap"), FourCharCode("rBsh"), 1, 3, 2);
    AddSPInputSettingBoolean(block, FourCharCode("flag"), 1);
    AddSPInputSettingCString(block, FourCharCode("path"), longText);
    AddSPInputSettingRadio(block, 0x41004243, FourCharCode("a\0b\0"), 0, 1, 0);
    AddSPInputSettingBoolean(block, FourCharCode("fals"), 0);
    AddSPOutputSettingCString(block, FourCharCode("none"), nullptr);

    FSSpec spec;
    SpecFromNativePath((folder / "dump").string(), &spec);
    int16_t file;
    ASSERT_EQ(FSpCreate(&spec, 0, 0, 0), noErr);
    ASSERT_EQ(FSpOpenDF(&spec, fsRdWrPerm, &file), noErr);
    for (uint32_t i = 0; i < CountSPInputs(block); ++i) {
        _WriteSPInputParam(block, i, file);
    }
    _WriteSPOutputParam(block, 0, file);
    _WriteSPInputParam(block, 99, file);
    FSClose(file);
    SetSPInputSettingCString(block, 4, nullptr);
    _DisposeSPBlock(block);

    EXPECT_EQ(ContentsOf(folder / "dump"),
              "0: Type = FLOAT\tKey = nRad\tMin = 0.0\tMax = 4.00000\tValue = 2.50000\r"
              "1: Type = LONG\tKey = long\tMin = -5\tMax = 5\tValue = 1\r"
              "2: Type = RADIO/rBsh\tKey = shap\tMin = 1\tMax = 3\tValue = 2\r"
              "3: Type = BOOLEAN\tKey = flag\tValue = TRUE\r"
              "4: Type = STRING\tKey = path\tValue = " +
                  std::string(255, 'x') + "\r" +
                  std::string("5: Type = RADIO/a\0b\0\tKey = A\0BC\tMin = 0\tMax = 1\tValue = 0\r", 58) +
                  "6: Type = BOOLEAN\tKey = fals\tValue = FALSE\r"
                  "0: Type = STRING\tKey = none\tValue = NULL\r");
}

}  // namespace
