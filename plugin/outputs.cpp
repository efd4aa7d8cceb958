#include "plugin/outputs.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "imagestore/paths.h"
#include "imagestore/strings.h"
#include "log/html_log.h"
#include "log/number_text.h"
#include "settings/key_names.h"

namespace {

constexpr OSType kLineEndKey = FourCharCode("crlf");
constexpr OSType kTextCreator = FourCharCode("ttxt");
constexpr OSType kTextType = FourCharCode("TEXT");
constexpr char kNotSaved[] = "<not_saved>";
constexpr int32_t kLastUnitIndex = 10;  // nanometres

// An output, and what the key-name table says about it.
struct Output {
    OSType key;
    OSType type;
    uint32_t index;
    char label[kKeyNameSize];
    char units[kKeyNameSize];
};

int32_t UnitIndex(const RunContext *context) {
    const float unit = PreferenceFloat(context, kUnitIndexOffset);
    // NaN is no unit; fractions are dropped, so nothing between 0 and 1 is one either.
    const bool known = unit >= 1 && unit <= kLastUnitIndex;
    return known && PreferenceFloat(context, kLengthCalibrationOffset) != 0 ? static_cast<int32_t>(unit)
                                                                            : kUnitIndexInches;
}

// Calls `handle` for every output that the table does not leave out. The last output is past the end of the
// block when an input was added to a full one.
template <typename Handler>
void ForEachOutput(const RunContext *context, SPBlock *settings, Handler handle) {
    for (uint32_t j = 0; j < CountSPOutputs(settings); ++j) {
        const SPEntry *entry = SPOutputEntry(settings, j);
        if (entry == nullptr) {
            break;
        }
        Output output = {_ByteSwapOSType(entry->key), _ByteSwapOSType(entry->type), j, {}, {}};
        if (_LookupParamKeyName(output.key, output.label, output.units, UnitIndex(context)) == noErr) {
            handle(output);
        }
    }
}

const char *DocumentPath(const RunContext *context) {
    return context->logBasePath == nullptr ? kNotSaved : context->logBasePath;
}

OSErr OpenMeasurementFile(const char *path, int16_t *file) {
    int32_t lines;
    const OSErr err = FSOpenAndAppendPath(path, file, &lines);
    if (err != fnfErr) {
        return err;
    }
    if (FSCreatePath(path, kTextCreator, kTextType) != noErr) {
        FSDeletePath(path);
        FSCreatePath(path, kTextCreator, kTextType);
    }
    return FSOpenAndAppendPath(path, file, &lines);
}

const char *BooleanWord(SPBlock *settings, uint32_t index) {
    return GetSPOutputSettingBoolean(settings, index) ? "TRUE" : "FALSE";
}

const char *StringOrNull(SPBlock *settings, uint32_t index) {
    const char *text = GetSPOutputSettingCString(settings, index);
    return text == nullptr ? "NULL" : text;
}

// Writes a value as a field of the file, or with its label as an entry of the log.
struct ValueKind {
    OSType type;
    void (*writeField)(int16_t file, SPBlock *settings, const Output &output);
    void (*logEntry)(const RunContext *context, SPBlock *settings, const Output &output);
};

void LogWords(const RunContext *context, const Output &output, const char *separator, const char *words) {
    char line[kKeyNameSize + 1 + kTextSize];
    ConcatCStrings(output.label, separator, line, sizeof line);
    ConcatCStrings(line, words, line, sizeof line);
    LogCString(context, line);
}

template <typename Value>
void LogNumber(const RunContext *context, const Output &output, Value value,
               OSErr (*log)(const RunContext *, ConstStringPtr, Value, ConstStringPtr)) {
    char label[kKeyNameSize + 1];
    char units[kKeyNameSize + 1];
    DuplicateCString(output.label, label, sizeof label);
    DuplicateCString(output.units, units, sizeof units);
    ConvertCStringToPString(label);
    ConvertCStringToPString(units);
    log(context, reinterpret_cast<ConstStringPtr>(label), value, reinterpret_cast<ConstStringPtr>(units));
}

void WriteBooleanField(int16_t file, SPBlock *settings, const Output &output) {
    WriteCString(file, BooleanWord(settings, output.index), true, false);
}

void LogBoolean(const RunContext *context, SPBlock *settings, const Output &output) {
    LogWords(context, output, " ", BooleanWord(settings, output.index));
}

void WriteStringField(int16_t file, SPBlock *settings, const Output &output) {
    WriteCString(file, StringOrNull(settings, output.index), true, false);
}

void LogString(const RunContext *context, SPBlock *settings, const Output &output) {
    const bool absent = GetSPOutputSettingCString(settings, output.index) == nullptr;
    LogWords(context, output, absent ? " " : "", StringOrNull(settings, output.index));
}

void WriteFloatField(int16_t file, SPBlock *settings, const Output &output) {
    WriteReal(file, GetSPOutputSettingFloat(settings, output.index), true, false);
}

void LogFloat(const RunContext *context, SPBlock *settings, const Output &output) {
    LogNumber(context, output, GetSPOutputSettingFloat(settings, output.index), LogLabelReal);
}

void WriteLongField(int16_t file, SPBlock *settings, const Output &output) {
    WriteVal(file, GetSPOutputSettingLong(settings, output.index), true, false);
}

void LogLong(const RunContext *context, SPBlock *settings, const Output &output) {
    LogNumber(context, output, GetSPOutputSettingLong(settings, output.index), LogLabelVal);
}

constexpr ValueKind kValueKinds[] = {
    {kSettingBoolean, WriteBooleanField, LogBoolean},
    {kSettingString, WriteStringField, LogString},
    {kSettingFloat, WriteFloatField, LogFloat},
};
constexpr ValueKind kIntegerKind = {kSettingLong, WriteLongField, LogLong};

const ValueKind &KindOf(OSType type) {
    const auto *found = std::find_if(std::begin(kValueKinds), std::end(kValueKinds),
                                     [type](const ValueKind &kind) { return kind.type == type; });
    return found == std::end(kValueKinds) ? kIntegerKind : *found;
}

}  // namespace

void WriteMeasurements(const RunContext *context, SPBlock *settings) {
    const char *path = context->preferenceStrings[kMeasurementPathSlot];
    int16_t file;
    if (path == nullptr || path[0] == 0 || CountSPOutputs(settings) == 0 ||
        OpenMeasurementFile(path, &file) != noErr) {
        return;
    }
    ForEachOutput(context, settings, [&](const Output &output) {
        if (output.key == kLineEndKey) {
            WriteCString(file, DocumentPath(context), true, false);
            WriteCString(file, output.label, false, true);
            return;
        }
        if (output.label[0] != 0) {
            WriteCString(file, output.label, true, false);
        }
        KindOf(output.type).writeField(file, settings, output);
        if (output.units[0] != 0) {
            WriteCString(file, output.units, true, false);
        }
    });
    FSClose(file);
}

void LogMeasurements(const RunContext *context, SPBlock *settings) {
    if (context->preferenceStrings[kMeasurementPathSlot] != nullptr) {
        ForEachOutput(context, settings, [&](Output output) {
            ConcatCStrings(output.label, " ", output.label, kKeyNameSize);
            if (output.key == kLineEndKey) {
                LogCString(context, DocumentPath(context));
            } else {
                KindOf(output.type).logEntry(context, settings, output);
            }
        });
    }
    _CloseIndexHTML();
}
