#include "settings/key_names.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "hybridmedian/public.h"
#include "imagestore/strings.h"
#include "log/number_text.h"
#include "platform/date_time.h"
#include "platform/memory.h"
#include "platform/resources.h"

namespace {

constexpr OSType kTableType = FourCharCode("TEXT");
constexpr int64_t kRecordSize = 64;
constexpr int64_t kNameOffset = 5;
constexpr int64_t kUnitsOffset = 48;

// Indexed by unit. The micro sign is Mac Roman.
constexpr const char *kUnitNames[] = {"px", "\265m", "mm", "cm", "m ", "km", "in", "ft", "mi", "th", "nm"};

struct Record {
    char bytes[kRecordSize + 1];
};

bool FindRecord(OSType key, Record *record) {
    const Handle table = GetResource(kTableType, kKeyNameTableID);
    const int64_t size = GetHandleSize(table);
    for (int64_t at = kRecordSize; at + kRecordSize <= size; at += kRecordSize) {
        if (CStringToOSType(*table + at) != key) {
            continue;
        }
        *record = {};
        std::memcpy(record->bytes, *table + at, kRecordSize);
        record->bytes[kRecordSize - 1] = 0;
        std::replace(record->bytes, record->bytes + kRecordSize, '_', '\0');
        return true;
    }
    return false;
}

// A setting's name and units after its units code was applied.
struct Label {
    char name[kKeyNameSize];
    char units[kKeyNameSize];
};

void SetLengthUnits(Label *label, int32_t unitIndex, const char *power) {
    const bool known = unitIndex >= 0 && unitIndex < static_cast<int32_t>(std::size(kUnitNames));
    ConcatCStrings("(", kUnitNames[known ? unitIndex : kUnitIndexInches], label->units, kKeyNameSize);
    ConcatCStrings(label->units, power, label->units, kKeyNameSize);
    ConcatCStrings(label->units, ")", label->units, kKeyNameSize);
}

OSErr Length(Label *label, int32_t unitIndex) {
    SetLengthUnits(label, unitIndex, "");
    return noErr;
}

OSErr Area(Label *label, int32_t unitIndex) {
    SetLengthUnits(label, unitIndex, "^2");
    return noErr;
}

OSErr Volume(Label *label, int32_t unitIndex) {
    SetLengthUnits(label, unitIndex, "^3");
    return noErr;
}

OSErr PerLength(Label *label, int32_t unitIndex) {
    SetLengthUnits(label, unitIndex, "^-1");
    return noErr;
}

OSErr NoUnits(Label *label, int32_t) {
    label->units[0] = 0;
    return noErr;
}

OSErr LeftOut(Label *, int32_t) {
    return fnfErr;
}

void AppendPString(ConstStringPtr text, char *line) {
    char piece[256] = {};
    BlockMoveData(text + 1, piece, text[0]);
    ConcatCStrings(line, piece, line, kKeyNameSize);
}

// Puts date and time in place of the name; they end a line of the measurement file.
OSErr DateAndTime(Label *label, int32_t) {
    uint32_t now;
    GetDateTime(&now);
    Str255 text;
    label->name[0] = 0;
    DateString(now, shortDate, text, nullptr);
    AppendPString(text, label->name);
    ConcatCStrings(label->name, " ", label->name, kKeyNameSize);
    TimeString(now, true, text, nullptr);
    AppendPString(text, label->name);
    label->units[0] = 0;
    return noErr;
}

constexpr struct {
    OSType code;
    OSErr (*apply)(Label *label, int32_t unitIndex);
} kUnitsCodes[] = {
    {FourCharCode("cur1"), Length},    {FourCharCode("cur2"), Area},        {FourCharCode("cur3"), Volume},
    {FourCharCode("cur-"), PerLength}, {FourCharCode("blan"), NoUnits},     {FourCharCode("none"), NoUnits},
    {FourCharCode("omit"), LeftOut},   {FourCharCode("crlf"), DateAndTime},
};

}  // namespace

OSErr _LookupParamKeyName(OSType key, char *outName, char *outUnits, int32_t unitIndex) {
    Record record;
    if (!FindRecord(key, &record)) {
        return fnfErr;
    }
    Label label;
    DuplicateCString(record.bytes + kNameOffset, label.name, kKeyNameSize);
    DuplicateCString(record.bytes + kUnitsOffset, label.units, kKeyNameSize);
    const OSType code = CStringToOSType(record.bytes + kUnitsOffset);
    const auto *units = std::find_if(std::begin(kUnitsCodes), std::end(kUnitsCodes),
                                     [code](const auto &known) { return known.code == code; });
    const OSErr err = units == std::end(kUnitsCodes) ? noErr : units->apply(&label, unitIndex);
    DuplicateCString(label.name, outName, kKeyNameSize);
    DuplicateCString(label.units, outUnits, kKeyNameSize);
    return err;
}
