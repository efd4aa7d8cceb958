#include "settings/script_bridge.h"

#include <cmath>
#include <cstring>
#include <utility>

#include "imagestore/strings.h"
#include "platform/memory.h"
#include "settings/host_descriptors.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/script_host.h"

namespace {

constexpr OSType kFloatKey = FourCharCode("nRad");
constexpr OSType kLongKey = FourCharCode("long");
constexpr OSType kUnitKey = FourCharCode("unCd");
constexpr OSType kBoolKey = FourCharCode("flag");
constexpr OSType kTextKey = FourCharCode("path");
constexpr OSType kRadioKey = FourCharCode("shap");
constexpr OSType kFixedKey = FourCharCode("fixd");
constexpr OSType kRadioType = FourCharCode("rBsh");
constexpr OSType kFixedType = FourCharCode("rxMd");  // a type that is not read back

class ScriptBridge : public ScratchFolder {
  protected:
    void SetUp() override {
        InitializeSPSettings(block, FourCharCode("test"), false, false);
        AddSPInputSettingFloat(block, kFloatKey, 0, 4, 2);
        AddSPInputSettingLong(block, kLongKey, -5, 5, 1);
        AddSPInputSettingLong(block, kUnitKey, 0, 10, 3);
        AddSPInputSettingBoolean(block, kBoolKey, 0);
        AddSPInputSettingCString(block, kTextKey, nullptr);
        AddSPInputSettingRadio(block, kRadioKey, kRadioType, 1, 3, 1);
        AddSPInputSettingRadio(block, kFixedKey, kFixedType, 1, 3, 1);
        AddSPInputSettingFloat(block, kFloatKey, 0, 9, 8);  // a key may occur twice
    }

    void TearDown() override {
        SetSPInputSettingCString(block, 4, nullptr);
        _DisposeSPBlock(block);
        ScratchFolder::TearDown();
    }

    Boolean Play(std::vector<script::Item> items, int16_t playInfo = plugInDialogDontDisplay) {
        PIDescriptorParameters parameters = script::Parameters(std::move(items), playInfo);
        FilterRecord record = {};
        record.descriptorParameters = &parameters;
        record.handleProcs = &script::handleProcs;
        record.handleProcs = &script::handleProcs;
        const Boolean skip = _ReadScriptParamFromPS(&record, block);
        EXPECT_EQ(script::openTokens, 0);
        EXPECT_EQ(GetHandleSize(parameters.descriptor), 1) << "reading leaves the descriptor to the host";
        DisposeHandle(parameters.descriptor);
        return skip;
    }

    SPBlock *block = _AllocateSPBlock(22);
};

TEST_F(ScriptBridge, TakesValuesInsideTheirRange) {
    const struct {
        double played;
        float first, second;
    } floats[] = {{3.5, 3.5f, 3.5f},  {5, 3.5f, 5}, {4, 4, 4},
                  {4.00000001, 4, 4}, {-1, 4, 4},   {std::nan(""), 4, 4}};
    for (const auto &c : floats) {
        Play({{kFloatKey, typeFloat, c.played}});
        EXPECT_EQ(GetSPInputSettingFloat(block, 0), c.first) << c.played;
        EXPECT_EQ(GetSPInputSettingFloat(block, 7), c.second) << c.played;
    }
    const struct {
        uint32_t index;
        OSType key, type;
        double played;
        int32_t value;
    } integers[] = {
        {1, kLongKey, typeInteger, -5, -5},    {1, kLongKey, typeInteger, 6, -5},
        {2, kUnitKey, typeEnumerated, 10, 10}, {2, kUnitKey, typeEnumerated, 11, 10},
        {2, kUnitKey, typeInteger, 5, 10},     {3, kBoolKey, typeBoolean, 7, 1},
        {5, kRadioKey, typeEnumerated, 3, 3},  {5, kRadioKey, typeEnumerated, 4, 3},
        {6, kFixedKey, typeEnumerated, 2, 1},
    };
    for (const auto &c : integers) {
        Play({{c.key, c.type, c.played}});
        EXPECT_EQ(GetSPInputSettingLong(block, c.index), c.value) << c.index << ' ' << c.played;
    }
    EXPECT_EQ(script::askedKeys, (std::vector<OSType>{kFloatKey, kLongKey, kUnitKey, kBoolKey, kTextKey,
                                                      kRadioKey, kFixedKey, kFloatKey}));
    Play({{kTextKey, typeText, 0, "Disk:a"}});
    EXPECT_STREQ(GetSPInputSettingCString(block, 4), "Disk:a");
    Play({{kTextKey, typeText, 0, std::string(900, 'x')}});
    EXPECT_EQ(std::string(GetSPInputSettingCString(block, 4)), std::string(513, 'x'));
    // The host alone knows how long its texts are.
    const auto getSize = std::exchange(script::handleProcs.getSizeProc, [](Handle) { return 4; });
    Play({{kTextKey, typeText, 0, "Disk:b"}});
    EXPECT_STREQ(GetSPInputSettingCString(block, 4), "Disk");
    script::handleProcs.getSizeProc = nullptr;
    Play({{kTextKey, typeText, 0, "else"}});
    EXPECT_STREQ(GetSPInputSettingCString(block, 4), "Disk");
    script::handleProcs.getSizeProc = getSize;
}

TEST_F(ScriptBridge, KeepsWhatCannotBeRead) {
    Play({{kFloatKey, typeFloat, 1, {}, 0, paramErr},
          {kLongKey, typeInteger, 2, {}, 0, paramErr},
          {kUnitKey, typeEnumerated, 2, {}, 0, paramErr},
          {kBoolKey, typeBoolean, 1, {}, 0, paramErr},
          {kTextKey, typeText, 0, "x", 0, paramErr},
          {kRadioKey, typeEnumerated, 2, {}, 0, paramErr},
          {FourCharCode("else"), typeFloat, 1}});
    EXPECT_EQ(GetSPInputSettingFloat(block, 0), 2);
    const int32_t values[] = {1, 3, 0, 0, 1};
    for (uint32_t i = 0; i < std::size(values); ++i) {
        EXPECT_EQ(GetSPInputSettingLong(block, i + 1), values[i]) << i + 1;
    }
    EXPECT_EQ(GetSPInputSettingCString(block, 4), nullptr);
}

TEST_F(ScriptBridge, DialogIsShownOnlyWhenAsked) {
    EXPECT_EQ(Play({}, plugInDialogDontDisplay), 1);
    EXPECT_EQ(Play({}, plugInDialogDisplay), 0);
    EXPECT_EQ(Play({}, plugInDialogSilent), 1);

    // Nothing was recorded.
    for (const int16_t playInfo : {plugInDialogDontDisplay, plugInDialogDisplay}) {
        PIDescriptorParameters parameters = {
            0, playInfo, 0, nullptr, &script::writeProcs, &script::readProcs};
        FilterRecord empty = {};
        empty.descriptorParameters = &parameters;
        EXPECT_EQ(_ReadScriptParamFromPS(&empty, block), playInfo == plugInDialogDontDisplay);
    }

    // No suites, or unknown ones.
    const struct {
        int16_t version, readVersion, readCount, writeVersion, writeCount;
        bool available, newer;
    } hosts[] = {
        {0, 0, 18, 0, 16, true, false},   {0, 3, 18, 3, 16, true, false},  {1, 0, 18, 0, 16, false, true},
        {0, 0, 17, 0, 16, false, false},  {0, 0, 18, 0, 15, false, false}, {0, -1, 18, 0, 16, false, false},
        {0, 0, 18, -1, 16, false, false},
    };
    for (const auto &host : hosts) {
        ReadDescriptorProcs read = script::readProcs;
        WriteDescriptorProcs write = script::writeProcs;
        read.readDescriptorProcsVersion = host.readVersion;
        read.numReadDescriptorProcs = host.readCount;
        write.writeDescriptorProcsVersion = host.writeVersion;
        write.numWriteDescriptorProcs = host.writeCount;
        const PIDescriptorParameters parameters = {host.version, 0, 0, nullptr, &write, &read};
        Boolean newer = 0;
        EXPECT_EQ(HostDescriptorAvailable(&parameters, &newer), host.available);
        EXPECT_EQ(newer, host.newer);
    }
    FilterRecord record = {};
    EXPECT_EQ(_ReadScriptParamFromPS(&record, block), 0);
    EXPECT_EQ(_WriteScriptParamToPS(&record, block), noErr);
}

TEST_F(ScriptBridge, RecordsEveryEntryByItsKind) {
    char text[kTextSize] = "Disk:a";
    SetSPInputSettingCString(block, 4, text);
    AddSPOutputSettingFloat(block, FourCharCode("area"), 0, 1, 0.5f);
    AddSPOutputSettingBoolean(block, FourCharCode("full"), 0);

    PIDescriptorParameters parameters = script::Parameters({}, 0);
    const Handle old = parameters.descriptor;
    FilterRecord record = {};
    record.descriptorParameters = &parameters;
    record.handleProcs = &script::handleProcs;
    script::closeError = memFullErr;
    EXPECT_EQ(_WriteScriptParamToPS(&record, block), memFullErr);
    EXPECT_EQ(parameters.descriptor, old);
    script::closeError = noErr;
    EXPECT_EQ(_WriteScriptParamToPS(&record, block), noErr);

    const std::vector<script::Item> expected = {
        {kFloatKey, typeFloat, 2},
        {kLongKey, typeInteger, 1},
        {kUnitKey, typeEnumerated, 3, {}, FourCharCode("UniT")},
        {kBoolKey, typeBoolean, 0},
        {kTextKey, typeText, 0, "Disk:a" + std::string(kTextSize - 6, '\0')},
        {kRadioKey, typeEnumerated, 1, {}, kRadioType},
        {kFixedKey, typeEnumerated, 1, {}, kFixedType},
        {kFloatKey, typeFloat, 8},
        // Each output carries the value of the input with the same index.
        {FourCharCode("area"), typeFloat, 2},
        {FourCharCode("full"), typeBoolean, 1},
    };
    EXPECT_EQ(script::recorded, expected);
    EXPECT_EQ(script::openTokens, 0);

    // The host makes the texts that it will keep.
    const auto make = std::exchange(script::handleProcs.newProc, [](int32_t) -> Handle { return nullptr; });
    EXPECT_EQ(_WriteScriptParamToPS(&record, block), noErr);
    EXPECT_EQ(script::recorded.size(), expected.size() - 1);
    DisposeHandle(parameters.descriptor);
    script::handleProcs.newProc = make;

    InitializeSPSettings(block, 0, false, false);
    script::recorded.clear();
    EXPECT_EQ(_WriteScriptParamToPS(&record, block), noErr);
    EXPECT_TRUE(script::recorded.empty());
    InitializeSPSettings(block, 0, false, false);
    block->inputCount = 8;  // so that all texts are cleared
}

// An input added last takes the first output's place and moves the outputs on by one, so that the last is
// outside the block.
TEST_F(ScriptBridge, RecordsNothingPastTheEndOfAFullBlock) {
    SPBlock *full = _AllocateSPBlock(22);
    InitializeSPSettings(full, 0, false, false);
    AddSPInputSettingLong(full, kLongKey, 0, 9, 1);
    for (OSType j = 0; j < 19; ++j) {
        AddSPOutputSettingLong(full, FourCharCode("outA") + j, 0, 9, 2);
    }
    AddSPInputSettingLong(full, kUnitKey, 0, 9, 3);

    PIDescriptorParameters parameters = script::Parameters({}, 0);
    FilterRecord record = {};
    record.descriptorParameters = &parameters;
    record.handleProcs = &script::handleProcs;
    EXPECT_EQ(_WriteScriptParamToPS(&record, full), noErr);
    ASSERT_EQ(script::recorded.size(), 20u);
    EXPECT_EQ(script::recorded[1].key, kUnitKey);
    for (OSType j = 1; j < 19; ++j) {
        EXPECT_EQ(script::recorded[j + 1].key, FourCharCode("outA") + j);
    }
    DisposeHandle(parameters.descriptor);
    _DisposeSPBlock(full);
}

}  // namespace
