#include "settings/setting_registry.h"

#include <algorithm>
#include <bit>

#include "imagestore/strings.h"
#include "platform/memory.h"

namespace {

constexpr int32_t kHeaderSlots = 2;  // a slot has the size of an entry; the SPBlock header takes two
static_assert(sizeof(SPBlock) <= kHeaderSlots * sizeof(SPEntry));

SPEntry *EntryAt(SPBlock *block, uint64_t index) {
    const auto size = static_cast<uint64_t>(GetPtrSize(reinterpret_cast<Ptr>(block)));
    const uint64_t slot = kHeaderSlots + index;
    return (slot + 1) * sizeof(SPEntry) <= size ? reinterpret_cast<SPEntry *>(block) + slot : nullptr;
}

// What an Add call stores; a text goes in afterwards.
struct NewEntry {
    OSType key;
    OSType type;
    int32_t min;
    int32_t max;
    int32_t value;
};

void Store(SPEntry *entry, const NewEntry &added) {
    if (entry == nullptr) {
        return;
    }
    entry->key = added.key;
    entry->type = added.type;
    entry->active = 1;
    entry->min = added.min;
    entry->max = added.max;
    entry->value = added.value;
    entry->text = nullptr;
}

uint32_t AddInput(SPBlock *block, const NewEntry &added) {
    const uint32_t index = block->inputCount;
    if (SPEntry *entry = SPInputEntry(block, index); entry != nullptr) {
        Store(entry, added);
        ++block->inputCount;
    }
    return index;
}

uint32_t AddOutput(SPBlock *block, const NewEntry &added) {
    const uint32_t index = block->outputCount;
    if (SPEntry *entry = SPOutputEntry(block, index); entry != nullptr) {
        Store(entry, added);
        ++block->outputCount;
    }
    return index;
}

NewEntry LongEntry(OSType key, OSType type, int32_t min, int32_t max, int32_t value) {
    return {key, type, min, max, value};
}

NewEntry FloatEntry(OSType key, float min, float max, float value) {
    return {key, kSettingFloat, std::bit_cast<int32_t>(min), std::bit_cast<int32_t>(max),
            std::bit_cast<int32_t>(value)};
}

NewEntry BooleanEntry(OSType key, Boolean value) {
    return {key, kSettingBoolean, 0, 1, value};
}

NewEntry StringEntry(OSType key, const SPEntry *entry) {
    // The slot keeps the maximum that it had.
    return {key, kSettingString, 0, entry == nullptr ? 0 : entry->max, 0};
}

int32_t ValueOf(const SPEntry *entry) {
    return entry == nullptr ? 0 : entry->value;
}

void SetValue(SPEntry *entry, int32_t value) {
    if (entry != nullptr) {
        entry->value = value;
    }
}

char *TextOf(const SPEntry *entry) {
    return entry == nullptr ? nullptr : entry->text;
}

// Replaces the text with a copy of `count` bytes and a final zero; null stays null. `text` may point into the
// old text.
void SetText(SPEntry *entry, const void *text, int32_t count) {
    if (entry == nullptr) {
        return;
    }
    char *copy = text == nullptr ? nullptr : AllocateCString(count + 1);
    if (copy != nullptr) {
        BlockMoveData(text, copy, count);
    }
    DisposeCString(entry->text);
    entry->text = copy;
}

void SetCString(SPEntry *entry, const char *text) {
    int32_t length = text == nullptr ? 0 : static_cast<uint8_t>(text[0]);
    while (text != nullptr && text[length] != 0) {
        ++length;
    }
    SetText(entry, text, length);
}

void SetPString(SPEntry *entry, ConstStringPtr text) {
    SetText(entry, text == nullptr ? nullptr : text + 1, text == nullptr ? 0 : text[0]);
}

}  // namespace

SPBlock *_AllocateSPBlock(int32_t count) {
    const int64_t slots = std::max(count, kHeaderSlots);
    return reinterpret_cast<SPBlock *>(NewPtrClear(slots * int64_t{sizeof(SPEntry)}));
}

void _DisposeSPBlock(SPBlock *block) {
    DisposePtr(reinterpret_cast<Ptr>(block));
}

void InitializeSPSettings(SPBlock *block, OSType signature, Boolean needsMaskImage, Boolean skipWriteback) {
    block->signature = signature;
    block->needsMaskImage = needsMaskImage;
    block->skipWriteback = skipWriteback;
    block->inputCount = 0;
    block->outputCount = 0;
}

uint32_t CountSPInputs(const SPBlock *block) {
    return block->inputCount;
}

uint32_t CountSPOutputs(const SPBlock *block) {
    return block->outputCount;
}

OSType GetSPWEMBSignature(const SPBlock *block) {
    return block->signature;
}

Boolean SPNeedsMaskImage(const SPBlock *block) {
    return block->needsMaskImage != 0;
}

Boolean SPSkipWritebackStatus(const SPBlock *block) {
    return block->skipWriteback != 0;
}

SPEntry *SPInputEntry(SPBlock *block, uint32_t index) {
    return EntryAt(block, index);
}

SPEntry *SPOutputEntry(SPBlock *block, uint32_t index) {
    return EntryAt(block, uint64_t{block->inputCount} + index);
}

// Inputs and outputs have the same operations, on different entries.
#define DEFINE_SETTING_CALLS(SIDE)                                                                           \
    uint32_t AddSP##SIDE##SettingLong(SPBlock *block, OSType key, int32_t min, int32_t max, int32_t value) { \
        return Add##SIDE(block, LongEntry(key, kSettingLong, min, max, value));                              \
    }                                                                                                        \
    uint32_t AddSP##SIDE##SettingRadio(SPBlock *block, OSType key, OSType type, int32_t min, int32_t max,    \
                                       int32_t value) {                                                      \
        return Add##SIDE(block, LongEntry(key, type, min, max, value));                                      \
    }                                                                                                        \
    uint32_t AddSP##SIDE##SettingFloat(SPBlock *block, OSType key, float min, float max, float value) {      \
        return Add##SIDE(block, FloatEntry(key, min, max, value));                                           \
    }                                                                                                        \
    uint32_t AddSP##SIDE##SettingBoolean(SPBlock *block, OSType key, Boolean value) {                        \
        return Add##SIDE(block, BooleanEntry(key, value));                                                   \
    }                                                                                                        \
    uint32_t AddSP##SIDE##SettingCString(SPBlock *block, OSType key, const char *text) {                     \
        SPEntry *entry = SP##SIDE##Entry(block, CountSP##SIDE##s(block));                                    \
        const uint32_t index = Add##SIDE(block, StringEntry(key, entry));                                    \
        SetCString(entry, text);                                                                             \
        return index;                                                                                        \
    }                                                                                                        \
    uint32_t AddSP##SIDE##SettingPString(SPBlock *block, OSType key, ConstStringPtr text) {                  \
        SPEntry *entry = SP##SIDE##Entry(block, CountSP##SIDE##s(block));                                    \
        const uint32_t index = Add##SIDE(block, StringEntry(key, entry));                                    \
        SetPString(entry, text);                                                                             \
        return index;                                                                                        \
    }                                                                                                        \
    int32_t GetSP##SIDE##SettingLong(SPBlock *block, uint32_t index) {                                       \
        return ValueOf(SP##SIDE##Entry(block, index));                                                       \
    }                                                                                                        \
    int32_t GetSP##SIDE##SettingRadio(SPBlock *block, uint32_t index) {                                      \
        return ValueOf(SP##SIDE##Entry(block, index));                                                       \
    }                                                                                                        \
    float GetSP##SIDE##SettingFloat(SPBlock *block, uint32_t index) {                                        \
        return std::bit_cast<float>(ValueOf(SP##SIDE##Entry(block, index)));                                 \
    }                                                                                                        \
    Boolean GetSP##SIDE##SettingBoolean(SPBlock *block, uint32_t index) {                                    \
        return ValueOf(SP##SIDE##Entry(block, index)) != 0;                                                  \
    }                                                                                                        \
    char *GetSP##SIDE##SettingCString(SPBlock *block, uint32_t index) {                                      \
        return TextOf(SP##SIDE##Entry(block, index));                                                        \
    }                                                                                                        \
    void SetSP##SIDE##SettingLong(SPBlock *block, uint32_t index, int32_t value) {                           \
        SetValue(SP##SIDE##Entry(block, index), value);                                                      \
    }                                                                                                        \
    void SetSP##SIDE##SettingRadio(SPBlock *block, uint32_t index, int32_t value) {                          \
        SetValue(SP##SIDE##Entry(block, index), value);                                                      \
    }                                                                                                        \
    void SetSP##SIDE##SettingFloat(SPBlock *block, uint32_t index, float value) {                            \
        SetValue(SP##SIDE##Entry(block, index), std::bit_cast<int32_t>(value));                              \
    }                                                                                                        \
    void SetSP##SIDE##SettingBoolean(SPBlock *block, uint32_t index, Boolean value) {                        \
        SetValue(SP##SIDE##Entry(block, index), value);                                                      \
    }                                                                                                        \
    void SetSP##SIDE##SettingCString(SPBlock *block, uint32_t index, const char *text) {                     \
        SetCString(SP##SIDE##Entry(block, index), text);                                                     \
    }

DEFINE_SETTING_CALLS(Input)
DEFINE_SETTING_CALLS(Output)
#undef DEFINE_SETTING_CALLS

void SetSPInputSettingPString(SPBlock *block, uint32_t index, ConstStringPtr text) {
    SetPString(SPInputEntry(block, index), text);
}

void SetSPOutputSettingPString(SPBlock *block, uint32_t index, ConstStringPtr text) {
    SetText(SPOutputEntry(block, index), text, text == nullptr ? 0 : text[0]);
}

int32_t _ByteSwapLong(int32_t value) {
    return value;
}

float _ByteSwapFloat(float value) {
    return value;
}

OSType _ByteSwapOSType(OSType value) {
    return value;
}
