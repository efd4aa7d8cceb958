#include "host/filter/descriptor_suites.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "host/filter/action.h"
#include "photoshop/selectors.h"
#include "platform/memory.h"

struct PIReadDescriptorRecord {
    Action action;
    size_t next;      // index of the item that getKey returns next
    OSType *keys;     // the keys that the reader expects, owned by the reader; may be null
    size_t keyCount;  // kept, since a zeroed key looks like the end of the list
};

struct PIWriteDescriptorRecord {
    Action action;
};

namespace {

// A value was outside its range and has been pinned.
constexpr OSErr coercedParamErr = 2;
constexpr size_t kMaxStringLength = 255;

// The suite fixes the type of `keys`.
// NOLINTNEXTLINE(readability-non-const-parameter)
PIReadDescriptor OpenReader(Handle descriptor, OSType *keys) {
    Action action;
    if (!DecodeAction(descriptor, &action)) {
        return nullptr;
    }
    size_t keyCount = 0;
    while (keys != nullptr && keys[keyCount] != 0) {
        ++keyCount;
    }
    return new PIReadDescriptorRecord{std::move(action), 0, keys, keyCount};
}

OSErr CloseReader(PIReadDescriptor token) {
    delete token;
    return noErr;
}

Boolean GetKey(PIReadDescriptor token, OSType *key, OSType *type, int32_t *flags) {
    if (token->next == token->action.items.size()) {
        return false;
    }
    const ActionItem &item = token->action.items[token->next++];
    *key = item.key;
    *type = item.type;
    *flags = 0;
    if (token->keys != nullptr) {
        std::replace(token->keys, token->keys + token->keyCount, item.key, OSType{0});
    }
    return true;
}

// The item of the latest key, if it has the type; otherwise null.
const ActionItem *Current(PIReadDescriptor token, OSType type) {
    const ActionItem *item = token->next == 0 ? nullptr : &token->action.items[token->next - 1];
    return item != nullptr && item->type == type ? item : nullptr;
}

OSErr GetInteger(PIReadDescriptor token, int32_t *value) {
    const ActionItem *item = Current(token, typeInteger);
    if (item == nullptr) {
        return paramErr;
    }
    *value = std::bit_cast<int32_t>(item->integer);
    return noErr;
}

OSErr GetFloat(PIReadDescriptor token, double *value) {
    const ActionItem *item = Current(token, typeFloat);
    if (item == nullptr) {
        return paramErr;
    }
    *value = item->number;
    return noErr;
}

OSErr GetUnitFloat(PIReadDescriptor token, OSType *unit, double *value) {
    const ActionItem *item = Current(token, typeUnitFloat);
    if (item == nullptr) {
        return paramErr;
    }
    *unit = item->code;
    *value = item->number;
    return noErr;
}

OSErr GetBoolean(PIReadDescriptor token, Boolean *value) {
    const ActionItem *item = Current(token, typeBoolean);
    if (item == nullptr) {
        return paramErr;
    }
    *value = item->integer != 0;
    return noErr;
}

// The reader disposes of the handle.
OSErr GetBytes(const ActionItem *item, Handle *bytes) {
    if (item == nullptr) {
        return paramErr;
    }
    *bytes = NewHandle(static_cast<int64_t>(item->bytes.size()));
    if (*bytes == nullptr) {
        return memFullErr;
    }
    std::memcpy(**bytes, item->bytes.data(), item->bytes.size());
    return noErr;
}

OSErr GetText(PIReadDescriptor token, Handle *text) {
    return GetBytes(Current(token, typeText), text);
}

OSErr GetAlias(PIReadDescriptor token, Handle *alias) {
    return GetBytes(Current(token, typeAlias), alias);
}

OSErr GetEnumerated(PIReadDescriptor token, OSType *value) {
    const ActionItem *item = Current(token, typeEnumerated);
    if (item == nullptr) {
        return paramErr;
    }
    *value = item->integer;
    return noErr;
}

OSErr GetClass(PIReadDescriptor token, OSType *value) {
    const ActionItem *item = Current(token, typeClass);
    if (item == nullptr) {
        return paramErr;
    }
    *value = item->code;
    return noErr;
}

OSErr GetSimpleReference(PIReadDescriptor, void *) {
    return errPlugInHostInsufficient;
}

OSErr GetObject(PIReadDescriptor token, OSType *type, Handle *object) {
    const ActionItem *item = Current(token, typeObject);
    const OSErr err = GetBytes(item, object);
    if (err == noErr) {
        *type = item->code;
    }
    return err;
}

OSErr GetCount(PIReadDescriptor, uint32_t *) {
    return errPlugInHostInsufficient;
}

OSErr GetString(PIReadDescriptor token, Str255 *text) {
    const ActionItem *item = Current(token, typeText);
    if (item == nullptr) {
        return paramErr;
    }
    const size_t length = std::min(item->bytes.size(), kMaxStringLength);
    (*text)[0] = static_cast<uint8_t>(length);
    std::memcpy(*text + 1, item->bytes.data(), length);
    return noErr;
}

template <typename Value>
OSErr Pin(Value min, Value max, Value *value) {
    const Value pinned = *value < min ? min : *value > max ? max : *value;
    const bool outside = pinned < *value || pinned > *value;
    *value = pinned;
    return outside ? coercedParamErr : noErr;
}

OSErr GetPinnedInteger(PIReadDescriptor token, int32_t min, int32_t max, int32_t *value) {
    const OSErr err = GetInteger(token, value);
    return err == noErr ? Pin(min, max, value) : err;
}

OSErr GetPinnedFloat(PIReadDescriptor token, const double *min, const double *max, double *value) {
    const OSErr err = GetFloat(token, value);
    return err == noErr ? Pin(*min, *max, value) : err;
}

// Also returns the unit, which `min` and `max` are in.
OSErr GetPinnedUnitFloat(PIReadDescriptor token, const double *min, const double *max, OSType *unit,
                         double *value) {
    const OSErr err = GetUnitFloat(token, unit, value);
    return err == noErr ? Pin(*min, *max, value) : err;
}

PIWriteDescriptor OpenWriter() {
    return new PIWriteDescriptorRecord{};
}

// The filter owns the handle it gets; on memFullErr that is null.
OSErr CloseWriter(PIWriteDescriptor token, Handle *descriptor) {
    *descriptor = EncodeAction(token->action);
    delete token;
    return *descriptor == nullptr ? memFullErr : noErr;
}

OSErr PutItem(PIWriteDescriptor token, ActionItem item) {
    token->action.items.push_back(std::move(item));
    return noErr;
}

OSErr PutInteger(PIWriteDescriptor token, OSType key, int32_t value) {
    return PutItem(token, {.key = key, .type = typeInteger, .integer = std::bit_cast<uint32_t>(value)});
}

OSErr PutFloat(PIWriteDescriptor token, OSType key, const double *value) {
    return PutItem(token, {.key = key, .type = typeFloat, .number = *value});
}

OSErr PutUnitFloat(PIWriteDescriptor token, OSType key, OSType unit, const double *value) {
    return PutItem(token, {.key = key, .type = typeUnitFloat, .code = unit, .number = *value});
}

OSErr PutBoolean(PIWriteDescriptor token, OSType key, Boolean value) {
    return PutItem(token, {.key = key, .type = typeBoolean, .integer = value});
}

OSErr PutBytes(PIWriteDescriptor token, ActionItem item, Handle bytes) {
    if (bytes == nullptr) {
        return paramErr;
    }
    item.bytes.assign(*bytes, static_cast<size_t>(GetHandleSize(bytes)));
    return PutItem(token, std::move(item));
}

OSErr PutText(PIWriteDescriptor token, OSType key, Handle text) {
    return PutBytes(token, {.key = key, .type = typeText}, text);
}

OSErr PutAlias(PIWriteDescriptor token, OSType key, Handle alias) {
    return PutBytes(token, {.key = key, .type = typeAlias}, alias);
}

OSErr PutEnumerated(PIWriteDescriptor token, OSType key, OSType type, OSType value) {
    return PutItem(token, {.key = key, .type = typeEnumerated, .code = type, .integer = value});
}

OSErr PutClass(PIWriteDescriptor token, OSType key, OSType value) {
    return PutItem(token, {.key = key, .type = typeClass, .code = value});
}

OSErr PutSimpleReference(PIWriteDescriptor, OSType, const void *) {
    return errPlugInHostInsufficient;
}

OSErr PutObject(PIWriteDescriptor token, OSType key, OSType type, Handle object) {
    return PutBytes(token, {.key = key, .type = typeObject, .code = type}, object);
}

OSErr PutCount(PIWriteDescriptor, OSType, uint32_t) {
    return errPlugInHostInsufficient;
}

OSErr PutString(PIWriteDescriptor token, OSType key, const Str255 *text) {
    const auto *characters = reinterpret_cast<const char *>(*text + 1);
    return PutItem(token, {.key = key, .type = typeText, .bytes = std::string(characters, (*text)[0])});
}

ReadDescriptorProcs readProcs = {kReadDescriptorProcsVersion,
                                 kReadDescriptorProcsCount,
                                 OpenReader,
                                 CloseReader,
                                 GetKey,
                                 GetInteger,
                                 GetFloat,
                                 GetUnitFloat,
                                 GetBoolean,
                                 GetText,
                                 GetAlias,
                                 GetEnumerated,
                                 GetClass,
                                 GetSimpleReference,
                                 GetObject,
                                 GetCount,
                                 GetString,
                                 GetPinnedInteger,
                                 GetPinnedFloat,
                                 GetPinnedUnitFloat};

// Scoped classes and objects are not different here: there is only one name space.
WriteDescriptorProcs writeProcs = {kWriteDescriptorProcsVersion,
                                   kWriteDescriptorProcsCount,
                                   OpenWriter,
                                   CloseWriter,
                                   PutInteger,
                                   PutFloat,
                                   PutUnitFloat,
                                   PutBoolean,
                                   PutText,
                                   PutAlias,
                                   PutEnumerated,
                                   PutClass,
                                   PutSimpleReference,
                                   PutObject,
                                   PutCount,
                                   PutString,
                                   PutClass,
                                   PutObject};

}  // namespace

ReadDescriptorProcs *HostReadDescriptorProcs() {
    return &readProcs;
}

WriteDescriptorProcs *HostWriteDescriptorProcs() {
    return &writeProcs;
}
