#include "settings/setting_registry.h"

#include <bit>
#include <cstring>
#include <string>

#include "imagestore/strings.h"
#include "platform/memory.h"
#include "tests/support/scratch_folder.h"

namespace {

constexpr OSType kKey = FourCharCode("kKey");
constexpr OSType kRadio = FourCharCode("rBxx");

class SettingRegistry : public ScratchFolder {
  protected:
    SPBlock *block = _AllocateSPBlock(22);

    void TearDown() override {
        for (uint32_t i = 0; i < CountSPInputs(block); ++i) {
            SetSPInputSettingCString(block, i, nullptr);
        }
        for (uint32_t j = 0; j < CountSPOutputs(block); ++j) {
            SetSPOutputSettingCString(block, j, nullptr);
        }
        _DisposeSPBlock(block);
        ScratchFolder::TearDown();
    }
};

// A text as callers pass it, followed by zeros.
struct Text {
    explicit Text(const std::string &text) { std::copy(text.begin(), text.end(), bytes); }
    char bytes[kTextSize] = {};
};

TEST_F(SettingRegistry, InputsComeBeforeOutputs) {
    InitializeSPSettings(block, FourCharCode("HyMd"), false, true);
    EXPECT_EQ(AddSPInputSettingFloat(block, kKey, 0, 4, 2.5f), 0u);
    EXPECT_EQ(AddSPInputSettingLong(block, kKey, -9, 9, 7), 1u);
    EXPECT_EQ(AddSPInputSettingBoolean(block, kKey, 5), 2u);
    EXPECT_EQ(AddSPOutputSettingRadio(block, kKey, kRadio, 1, 3, 2), 0u);
    EXPECT_EQ(CountSPInputs(block), 3u);
    EXPECT_EQ(CountSPOutputs(block), 1u);
    EXPECT_EQ(GetSPWEMBSignature(block), FourCharCode("HyMd"));
    EXPECT_EQ(SPNeedsMaskImage(block), 0);
    EXPECT_EQ(SPSkipWritebackStatus(block), 1);

    const SPEntry *radius = SPInputEntry(block, 0);
    EXPECT_EQ(radius->type, FourCharCode("doub"));
    EXPECT_EQ(radius->active, 1);
    EXPECT_EQ(std::bit_cast<float>(radius->max), 4.0f);
    EXPECT_EQ(SPOutputEntry(block, 0), SPInputEntry(block, 3));
    EXPECT_EQ(GetSPInputSettingFloat(block, 0), 2.5f);
    EXPECT_EQ(GetSPInputSettingLong(block, 1), 7);
    EXPECT_EQ(GetSPInputSettingBoolean(block, 2), 1);
    EXPECT_EQ(GetSPOutputSettingRadio(block, 0), 2);

    InitializeSPSettings(block, 0, true, false);
    EXPECT_EQ(CountSPInputs(block) + CountSPOutputs(block), 0u);
}

TEST_F(SettingRegistry, StringsAreCopiedByTheirOwnLengthRules) {
    InitializeSPSettings(block, 0, false, false);
    const Text path("Disk:Logs:run.txt");
    AddSPInputSettingCString(block, kKey, path.bytes);
    EXPECT_STREQ(GetSPInputSettingCString(block, 0), path.bytes);
    EXPECT_EQ(GetPtrSize(GetSPInputSettingCString(block, 0)), 'D' + 1) << "the first byte says where to look";
    // A length-prefixed text that ends in a zero keeps its length byte.
    AddSPInputSettingCString(block, kKey, Text("\3abc").bytes);
    EXPECT_STREQ(GetSPInputSettingCString(block, 1), "\3abc");
    AddSPInputSettingCString(block, kKey, Text("").bytes);
    EXPECT_STREQ(GetSPInputSettingCString(block, 2), "");
    AddSPInputSettingCString(block, kKey, nullptr);
    EXPECT_EQ(GetSPInputSettingCString(block, 3), nullptr);

    const uint8_t abc[] = "\3abc";
    AddSPInputSettingPString(block, kKey, abc);
    EXPECT_STREQ(GetSPInputSettingCString(block, 4), "abc");
    AddSPOutputSettingPString(block, kKey, abc);
    EXPECT_STREQ(GetSPOutputSettingCString(block, 0), "abc");
    SetSPOutputSettingPString(block, 0, abc);
    EXPECT_STREQ(GetSPOutputSettingCString(block, 0), "\3ab");
    SetSPInputSettingPString(block, 4, nullptr);
    EXPECT_EQ(GetSPInputSettingCString(block, 4), nullptr);

    const Text longer(std::string(300, 'z'));
    SetSPInputSettingCString(block, 0, longer.bytes);
    SetSPInputSettingCString(block, 0, GetSPInputSettingCString(block, 0));
    EXPECT_STREQ(GetSPInputSettingCString(block, 0), longer.bytes);
    // A zero before the position that the first byte gives is part of the text.
    SetSPInputSettingCString(block, 0, Text(std::string("\5ab\0cde", 7)).bytes);
    ASSERT_EQ(GetPtrSize(GetSPInputSettingCString(block, 0)), 8);
    EXPECT_EQ(std::string(GetSPInputSettingCString(block, 0), 8), std::string("\5ab\0cde", 8));
}

// Refilling a block keeps whatever an add does not set.
TEST_F(SettingRegistry, StringsKeepTheMaximumOfTheirSlot) {
    InitializeSPSettings(block, 0, false, false);
    AddSPInputSettingLong(block, kKey, 3, 9, 7);
    AddSPInputSettingLong(block, kKey, 3, 8, 7);
    InitializeSPSettings(block, 0, false, false);
    AddSPInputSettingCString(block, kKey, Text("x").bytes);
    AddSPOutputSettingPString(block, kKey, nullptr);
    for (const int32_t i : {0, 1}) {
        const SPEntry *entry = SPInputEntry(block, static_cast<uint32_t>(i));
        EXPECT_EQ(entry->min, 0);
        EXPECT_EQ(entry->max, 9 - i);
    }
}

TEST_F(SettingRegistry, FullBlocksTakeNothingMore) {
    InitializeSPSettings(block, 0, false, false);
    for (uint32_t i = 0; i < 20; ++i) {
        EXPECT_EQ(AddSPInputSettingLong(block, kKey, 0, 9, 3), i);
    }
    EXPECT_EQ(AddSPInputSettingLong(block, kKey, 0, 9, 3), 20u);
    EXPECT_EQ(AddSPOutputSettingCString(block, kKey, Text("x").bytes), 0u);
    EXPECT_EQ(CountSPInputs(block), 20u);
    EXPECT_EQ(CountSPOutputs(block), 0u);
    EXPECT_EQ(GetSPInputSettingLong(block, 19), 3);
    for (const uint32_t past : {20u, 21u, UINT32_MAX}) {
        SetSPInputSettingLong(block, past, 5);
        SetSPOutputSettingCString(block, past, Text("x").bytes);
        EXPECT_EQ(GetSPInputSettingLong(block, past), 0);
        EXPECT_EQ(GetSPOutputSettingCString(block, past), nullptr);
    }
}

}  // namespace
