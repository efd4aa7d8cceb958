#include "settings/script_bridge.h"

#include <algorithm>
#include <bit>
#include <iterator>

#include "imagestore/strings.h"
#include "platform/owned_block.h"
#include "settings/host_descriptors.h"
#include "toolkit/host_handles.h"

namespace {

constexpr OSType kUnitCodeKey = FourCharCode("unCd");
constexpr OSType kUnitEnumeration = FourCharCode("UniT");

struct Reader {
    const ReadDescriptorProcs *procs;
    PIReadDescriptor token;
    const HandleProcs *handleProcs;
};

struct Writer {
    const WriteDescriptorProcs *procs;
    PIWriteDescriptor token;
    const HandleProcs *handleProcs;
};

void StoreInRange(SPEntry *entry, OSErr err, int32_t value) {
    value = _ByteSwapLong(value);
    if (err == noErr && value >= entry->min && value <= entry->max) {
        entry->value = value;
    }
}

void ReadInteger(const Reader &reader, SPEntry *entry) {
    int32_t value = 0;
    const OSErr err = reader.procs->getIntegerProc(reader.token, &value);
    StoreInRange(entry, err, value);
}

void ReadEnumerated(const Reader &reader, SPEntry *entry) {
    OSType value = 0;
    const OSErr err = reader.procs->getEnumeratedProc(reader.token, &value);
    StoreInRange(entry, err, static_cast<int32_t>(value));
}

// Only types that begin with this are read back; other radio settings are recorded, but not played.
void ReadRadio(const Reader &reader, SPEntry *entry) {
    constexpr OSType kRadioPrefix = 'r' << 8 | 'B';
    if (entry->type >> 16 == kRadioPrefix) {
        ReadEnumerated(reader, entry);
    }
}

void ReadFloat(const Reader &reader, SPEntry *entry) {
    double value = 0;
    const OSErr err = reader.procs->getFloatProc(reader.token, &value);
    const float narrow = _ByteSwapFloat(static_cast<float>(value));
    // A value that is not a number fails both comparisons.
    if (err == noErr && narrow >= std::bit_cast<float>(entry->min) &&
        narrow <= std::bit_cast<float>(entry->max)) {
        entry->value = std::bit_cast<int32_t>(narrow);
    }
}

void ReadBoolean(const Reader &reader, SPEntry *entry) {
    Boolean value = 0;
    if (reader.procs->getBooleanProc(reader.token, &value) == noErr) {
        entry->value = value != 0;
    }
}

// A text whose size the host cannot tell leaves the setting as it is.
void StoreText(const HandleProcs *handleProcs, SPBlock *block, uint32_t input, Handle text) {
    const int32_t size = HostHandleSize(handleProcs, text);
    const Ptr contents = HostLockHandle(handleProcs, text);
    char *buffer = size < 0 || contents == nullptr ? nullptr : AllocateCString(kTextSize);
    if (buffer != nullptr) {
        BlockMoveData(contents, buffer, std::min(size, kTextSize - 1));
        SetSPInputSettingCString(block, input, buffer);
        DisposeCString(buffer);
    }
    HostUnlockHandle(handleProcs, text);
}

// Which of the host's procedures carry the value of an entry of this kind. Strings travel as handles of text
// and are not in the table.
struct Conveyance {
    OSType type;
    OSType key;  // 0: any
    void (*read)(const Reader &reader, SPEntry *entry);
    void (*write)(const Writer &writer, OSType key, OSType type, int32_t value);
};

void WriteInteger(const Writer &writer, OSType key, OSType, int32_t value) {
    writer.procs->putIntegerProc(writer.token, key, _ByteSwapLong(value));
}

void WriteUnitCode(const Writer &writer, OSType key, OSType, int32_t value) {
    writer.procs->putEnumeratedProc(writer.token, key, kUnitEnumeration,
                                    static_cast<OSType>(_ByteSwapLong(value)));
}

void WriteRadio(const Writer &writer, OSType key, OSType type, int32_t value) {
    writer.procs->putEnumeratedProc(writer.token, key, type, static_cast<OSType>(_ByteSwapLong(value)));
}

void WriteFloat(const Writer &writer, OSType key, OSType, int32_t value) {
    const double wide = _ByteSwapFloat(std::bit_cast<float>(value));
    writer.procs->putFloatProc(writer.token, key, &wide);
}

void WriteBoolean(const Writer &writer, OSType key, OSType, int32_t value) {
    writer.procs->putBooleanProc(writer.token, key, value != 0);
}

constexpr Conveyance kConveyances[] = {
    {kSettingBoolean, 0, ReadBoolean, WriteBoolean},
    {kSettingFloat, 0, ReadFloat, WriteFloat},
    {kSettingLong, kUnitCodeKey, ReadEnumerated, WriteUnitCode},
    {kSettingLong, 0, ReadInteger, WriteInteger},
};
constexpr Conveyance kRadioConveyance = {0, 0, ReadRadio, WriteRadio};

const Conveyance &ConveyanceOf(OSType type, OSType key) {
    const auto *found =
        std::find_if(std::begin(kConveyances), std::end(kConveyances),
                     [=](const Conveyance &c) { return c.type == type && (c.key == 0 || c.key == key); });
    return found == std::end(kConveyances) ? kRadioConveyance : *found;
}

void ReadEntry(const Reader &reader, SPBlock *block, uint32_t input) {
    SPEntry *entry = SPInputEntry(block, input);
    const OSType type = _ByteSwapOSType(entry->type);
    if (type != kSettingString) {
        ConveyanceOf(type, entry->key).read(reader, entry);
        return;
    }
    Handle text = nullptr;
    if (reader.procs->getTextProc(reader.token, &text) == noErr && text != nullptr) {
        StoreText(reader.handleProcs, block, input, text);
        HostDisposeHandle(reader.handleProcs, text);
    }
}

void WriteText(const Writer &writer, OSType key, const char *text) {
    char padded[kTextSize] = {};
    DuplicateCString(text, padded, kTextSize);
    const Handle handle = HostNewHandle(writer.handleProcs, kTextSize);
    const Ptr contents = HostLockHandle(writer.handleProcs, handle);
    if (contents != nullptr) {
        BlockMoveData(padded, contents, kTextSize);
        HostUnlockHandle(writer.handleProcs, handle);
        writer.procs->putTextProc(writer.token, key, handle);
    }
    HostDisposeNewHandle(writer.handleProcs, handle);
}

// Kind and key come from `entry`, the value from input `valueIndex`. Writes nothing for an entry past the
// block's end: adding an input after the outputs of a full block pushes the last output there.
void WriteEntry(const Writer &writer, SPBlock *block, const SPEntry *entry, uint32_t valueIndex) {
    if (entry == nullptr) {
        return;
    }
    const OSType key = _ByteSwapOSType(entry->key);
    const OSType type = _ByteSwapOSType(entry->type);
    if (type == kSettingString) {
        WriteText(writer, key, GetSPInputSettingCString(block, valueIndex));
    } else {
        ConveyanceOf(type, key).write(writer, key, type, GetSPInputSettingLong(block, valueIndex));
    }
}

// The inputs' keys, followed by a 0; null when memory is short.
OwnedBlock<OSType> ExpectedKeys(SPBlock *block) {
    const uint32_t count = CountSPInputs(block);
    OwnedBlock<OSType> keys = MakeOwnedBlock<OSType>(int64_t{count} + 1);
    for (uint32_t i = 0; keys != nullptr && i < count; ++i) {
        keys[i] = _ByteSwapOSType(SPInputEntry(block, i)->key);
    }
    return keys;
}

void ReadAllKeys(const Reader &reader, SPBlock *block) {
    OSType key = 0;
    OSType type = 0;
    int32_t flags = 0;
    while (reader.procs->getKeyProc(reader.token, &key, &type, &flags)) {
        // If the block has the key twice, both entries are updated.
        for (uint32_t i = 0; i < CountSPInputs(block); ++i) {
            if (_ByteSwapOSType(SPInputEntry(block, i)->key) == key) {
                ReadEntry(reader, block, i);
            }
        }
    }
}

}  // namespace

Boolean _ReadScriptParamFromPS(FilterRecord *record, SPBlock *block) {
    PIDescriptorParameters *parameters = record->descriptorParameters;
    if (!HostDescriptorAvailable(parameters, nullptr)) {
        return false;
    }
    const ReadDescriptorProcs *procs = parameters->readDescriptorProcs;
    const OwnedBlock<OSType> keys = ExpectedKeys(block);
    PIReadDescriptor token =
        keys == nullptr ? nullptr : procs->openReadDescriptorProc(parameters->descriptor, keys.get());
    if (token != nullptr) {
        ReadAllKeys({procs, token, record->handleProcs}, block);
        HostCloseReader(parameters, record->handleProcs, &token);
    }
    return !HostPlayDialog(parameters);
}

OSErr _WriteScriptParamToPS(FilterRecord *record, SPBlock *block) {
    PIDescriptorParameters *parameters = record->descriptorParameters;
    if ((CountSPInputs(block) == 0 && CountSPOutputs(block) == 0) ||
        !HostDescriptorAvailable(parameters, nullptr)) {
        return noErr;
    }
    const WriteDescriptorProcs *procs = parameters->writeDescriptorProcs;
    PIWriteDescriptor token = procs->openWriteDescriptorProc();
    if (token == nullptr) {
        return noErr;
    }
    for (uint32_t i = 0; i < CountSPInputs(block); ++i) {
        WriteEntry({procs, token, record->handleProcs}, block, SPInputEntry(block, i), i);
    }
    // An output is recorded with the value of the input of the same index.
    for (uint32_t j = 0; j < CountSPOutputs(block); ++j) {
        WriteEntry({procs, token, record->handleProcs}, block, SPOutputEntry(block, j), j);
    }
    return HostCloseWriter(parameters, record->handleProcs, &token);
}
