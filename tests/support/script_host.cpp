#include "tests/support/script_host.h"

#include <cstring>

#include "platform/memory.h"

namespace script {

std::vector<Item> recorded;
std::vector<OSType> askedKeys;
int openTokens;
OSErr closeError = noErr;

namespace {

std::vector<Item> playing;  // the items to read
size_t position;            // one past the item last read

// The item last read; null if it is of another type.
const Item *Current(OSType type) {
    const Item &item = playing[position - 1];
    return item.type == type ? &item : nullptr;
}

// Delivers the item last read as a number of the type, even when reading it gives an error.
template <typename Value>
OSErr GetNumber(OSType type, Value *value) {
    const Item *item = Current(type);
    if (item == nullptr) {
        return paramErr;
    }
    *value = static_cast<Value>(item->number);
    return item->error;
}

OSErr Put(Item item) {
    recorded.push_back(std::move(item));
    return noErr;
}

ReadDescriptorProcs MakeReadProcs() {
    ReadDescriptorProcs procs = {};
    procs.numReadDescriptorProcs = kReadDescriptorProcsCount;
    procs.openReadDescriptorProc = [](Handle descriptor, OSType *keys) {
        position = 0;
        askedKeys.clear();
        for (; *keys != 0; ++keys) {
            askedKeys.push_back(*keys);
        }
        openTokens += descriptor != nullptr;
        return reinterpret_cast<PIReadDescriptor>(descriptor);
    };
    procs.closeReadDescriptorProc = [](PIReadDescriptor) {
        --openTokens;
        return noErr;
    };
    procs.getKeyProc = [](PIReadDescriptor, OSType *key, OSType *type, int32_t *flags) -> Boolean {
        if (position == playing.size()) {
            return false;
        }
        *key = playing[position].key;
        *type = playing[position].type;
        *flags = 0;
        ++position;
        return true;
    };
    procs.getIntegerProc = [](PIReadDescriptor, int32_t *value) { return GetNumber(typeInteger, value); };
    procs.getFloatProc = [](PIReadDescriptor, double *value) { return GetNumber(typeFloat, value); };
    procs.getBooleanProc = [](PIReadDescriptor, Boolean *value) { return GetNumber(typeBoolean, value); };
    procs.getEnumeratedProc = [](PIReadDescriptor, OSType *value) {
        return GetNumber(typeEnumerated, value);
    };
    procs.getTextProc = [](PIReadDescriptor, Handle *text) {
        const Item *item = Current(typeText);
        if (item == nullptr || item->error != noErr) {
            return item == nullptr ? paramErr : item->error;
        }
        *text = NewHandle(static_cast<int64_t>(item->text.size()));
        std::memcpy(**text, item->text.data(), item->text.size());
        return noErr;
    };
    return procs;
}

WriteDescriptorProcs MakeWriteProcs() {
    WriteDescriptorProcs procs = {};
    procs.numWriteDescriptorProcs = kWriteDescriptorProcsCount;
    procs.openWriteDescriptorProc = [] {
        recorded.clear();
        ++openTokens;
        return reinterpret_cast<PIWriteDescriptor>(&recorded);
    };
    procs.closeWriteDescriptorProc = [](PIWriteDescriptor, Handle *descriptor) {
        --openTokens;
        *descriptor = closeError == noErr ? NewHandle(1) : nullptr;
        return closeError;
    };
    procs.putIntegerProc = [](PIWriteDescriptor, OSType key, int32_t value) {
        return Put({key, typeInteger, static_cast<double>(value)});
    };
    procs.putFloatProc = [](PIWriteDescriptor, OSType key, const double *value) {
        return Put({key, typeFloat, *value});
    };
    procs.putBooleanProc = [](PIWriteDescriptor, OSType key, Boolean value) {
        return Put({key, typeBoolean, static_cast<double>(value)});
    };
    procs.putTextProc = [](PIWriteDescriptor, OSType key, Handle text) {
        return Put({key, typeText, 0, std::string(*text, static_cast<size_t>(GetHandleSize(text)))});
    };
    procs.putEnumeratedProc = [](PIWriteDescriptor, OSType key, OSType type, OSType value) {
        return Put({key, typeEnumerated, static_cast<double>(static_cast<int32_t>(value)), {}, type});
    };
    return procs;
}

}  // namespace

ReadDescriptorProcs readProcs = MakeReadProcs();
WriteDescriptorProcs writeProcs = MakeWriteProcs();
HandleProcs handleProcs = {kHandleProcsVersion,
                           6,
                           [](int32_t size) { return NewHandle(size); },
                           DisposeHandle,
                           [](Handle handle) { return static_cast<int32_t>(GetHandleSize(handle)); },
                           [](Handle handle, int32_t size) { return SetHandleSize(handle, size); },
                           [](Handle handle, Boolean) { return *handle; },
                           HUnlock,
                           nullptr,
                           nullptr};

PIDescriptorParameters Parameters(std::vector<Item> items, int16_t playInfo) {
    playing = std::move(items);
    recorded.clear();
    closeError = noErr;
    return {
        kDescriptorParametersVersion, playInfo, plugInDialogOptional, NewHandle(1), &writeProcs, &readProcs};
}

}  // namespace script
