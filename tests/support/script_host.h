// The scripting side of a host: hands out one list of recorded values and takes another.
#pragma once

#include <cstring>
#include <string>
#include <vector>

#include "photoshop/descriptors.h"
#include "platform/memory.h"

namespace script {

struct Item {
    OSType key = 0;
    OSType type = 0;  // as in a descriptor: typeFloat, typeInteger, typeBoolean, typeText, typeEnumerated
    double number = 0;
    std::string text = {};
    OSType enumeration = 0;
    OSErr error = noErr;  // what reading it gives

    bool operator==(const Item &) const = default;
};

inline std::vector<Item> playing;   // what is read
inline std::vector<Item> recorded;  // what was written
inline size_t position;             // one past the item read last
inline OSErr closeError = noErr;

inline const Item &Current() {
    return playing[position - 1];
}

inline OSErr Put(Item item) {
    recorded.push_back(std::move(item));
    return noErr;
}

inline ReadDescriptorProcs MakeReadProcs() {
    ReadDescriptorProcs procs = {};
    procs.numReadDescriptorProcs = kReadDescriptorProcsCount;
    procs.openReadDescriptorProc = [](Handle descriptor, OSType *) {
        position = 0;
        return reinterpret_cast<PIReadDescriptor>(descriptor);
    };
    procs.closeReadDescriptorProc = [](PIReadDescriptor) { return noErr; };
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
    procs.getIntegerProc = [](PIReadDescriptor, int32_t *value) {
        *value = static_cast<int32_t>(Current().number);
        return Current().error;
    };
    procs.getFloatProc = [](PIReadDescriptor, double *value) {
        *value = Current().number;
        return Current().error;
    };
    procs.getBooleanProc = [](PIReadDescriptor, Boolean *value) {
        *value = static_cast<Boolean>(Current().number);
        return Current().error;
    };
    procs.getTextProc = [](PIReadDescriptor, Handle *text) {
        *text = NewHandle(static_cast<int64_t>(Current().text.size()));
        std::memcpy(**text, Current().text.data(), Current().text.size());
        return Current().error;
    };
    procs.getEnumeratedProc = [](PIReadDescriptor, OSType *value) {
        *value = static_cast<OSType>(Current().number);
        return Current().error;
    };
    return procs;
}

inline WriteDescriptorProcs MakeWriteProcs() {
    WriteDescriptorProcs procs = {};
    procs.numWriteDescriptorProcs = kWriteDescriptorProcsCount;
    procs.openWriteDescriptorProc = [] {
        recorded.clear();
        return reinterpret_cast<PIWriteDescriptor>(&recorded);
    };
    procs.closeWriteDescriptorProc = [](PIWriteDescriptor, Handle *descriptor) {
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

inline ReadDescriptorProcs readProcs = MakeReadProcs();
inline WriteDescriptorProcs writeProcs = MakeWriteProcs();

// Plays `items`; a host without a recorded action has no descriptor. The caller disposes of `descriptor`.
inline PIDescriptorParameters Parameters(std::vector<Item> items, int16_t playInfo) {
    playing = std::move(items);
    recorded.clear();
    closeError = noErr;
    return {
        kDescriptorParametersVersion, playInfo, plugInDialogOptional, NewHandle(1), &writeProcs, &readProcs};
}

}  // namespace script
