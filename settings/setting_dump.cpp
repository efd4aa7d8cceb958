#include "settings/setting_dump.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <iterator>

#include "imagestore/strings.h"
#include "log/number_text.h"

namespace {

void Write(int16_t file, const char *text, Boolean tab = false, Boolean lineEnd = false) {
    WriteCString(file, text, tab, lineEnd);
}

// Always four characters, even if some of them are zeros.
void WriteCode(int16_t file, OSType code, Boolean tab) {
    const uint8_t text[] = {4, static_cast<uint8_t>(code >> 24), static_cast<uint8_t>(code >> 16),
                            static_cast<uint8_t>(code >> 8), static_cast<uint8_t>(code)};
    WriteStr(file, text, tab, false);
}

void WriteFloat(int16_t file, int32_t bits, Boolean tab, Boolean lineEnd) {
    WriteReal(file, std::bit_cast<float>(bits), tab, lineEnd);
}

void WriteInteger(int16_t file, int32_t value, Boolean tab, Boolean lineEnd) {
    WriteVal(file, value, tab, lineEnd);
}

void WriteKey(int16_t file, const SPEntry &entry) {
    Write(file, "Key = ");
    WriteCode(file, entry.key, true);
}

void WriteRange(int16_t file, const SPEntry &entry, void (*writeNumber)(int16_t, int32_t, Boolean, Boolean)) {
    WriteKey(file, entry);
    Write(file, "Min = ");
    writeNumber(file, entry.min, true, false);
    Write(file, "Max = ");
    writeNumber(file, entry.max, true, false);
    Write(file, "Value = ");
    writeNumber(file, entry.value, false, true);
}

void WriteLongLine(int16_t file, const SPEntry &entry) {
    Write(file, "Type = LONG", true);
    WriteRange(file, entry, WriteInteger);
}

void WriteFloatLine(int16_t file, const SPEntry &entry) {
    Write(file, "Type = FLOAT", true);
    WriteRange(file, entry, WriteFloat);
}

void WriteRadioLine(int16_t file, const SPEntry &entry) {
    Write(file, "Type = RADIO/");
    WriteCode(file, entry.type, true);
    WriteRange(file, entry, WriteInteger);
}

void WriteBooleanLine(int16_t file, const SPEntry &entry) {
    Write(file, "Type = BOOLEAN", true);
    WriteKey(file, entry);
    Write(file, entry.value != 0 ? "Value = TRUE" : "Value = FALSE", false, true);
}

// Texts are cut to 255 characters. DisposeCString marks the copy as deleted before freeing it.
void WriteStringLine(int16_t file, const SPEntry &entry) {
    Write(file, "Type = STRING", true);
    WriteKey(file, entry);
    Write(file, "Value = ");
    char *copy = entry.text == nullptr ? nullptr : AllocateCString(kTextSize);
    if (copy == nullptr) {
        Write(file, "NULL", false, true);
        return;
    }
    DuplicateCString(entry.text, copy, kTextSize);
    ConvertCStringToPString(copy);
    WriteStr(file, reinterpret_cast<ConstStringPtr>(copy), false, true);
    DisposeCString(copy);
}

constexpr struct {
    OSType type;
    void (*write)(int16_t file, const SPEntry &entry);
} kLines[] = {
    {kSettingLong, WriteLongLine},
    {kSettingFloat, WriteFloatLine},
    {kSettingBoolean, WriteBooleanLine},
    {kSettingString, WriteStringLine},
};

void WriteEntry(int16_t file, uint32_t index, const SPEntry *entry) {
    if (entry == nullptr) {
        return;
    }
    WriteInteger(file, static_cast<int32_t>(index), false, false);
    Write(file, ": ");
    const auto *line = std::find_if(std::begin(kLines), std::end(kLines),
                                    [entry](const auto &kind) { return kind.type == entry->type; });
    (line == std::end(kLines) ? WriteRadioLine : line->write)(file, *entry);
}

}  // namespace

void _WriteSPInputParam(SPBlock *block, uint32_t index, int16_t fileRef) {
    WriteEntry(fileRef, index, SPInputEntry(block, index));
}

void _WriteSPOutputParam(SPBlock *block, uint32_t index, int16_t fileRef) {
    WriteEntry(fileRef, index, SPOutputEntry(block, index));
}
