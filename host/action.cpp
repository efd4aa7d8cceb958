#include "host/action.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "platform/memory.h"

namespace {

// Native byte order: the encoding never leaves the process.
constexpr OSType kMark = FourCharCode("actn");

struct ActionHeader {
    OSType mark;
    OSType event;
    uint32_t itemCount;
};

struct ItemHeader {
    OSType key;
    OSType type;
    OSType code;
    uint32_t integer;
    double number;
    uint64_t byteCount;  // of the bytes that follow
};

template <typename Record>
void Append(std::string *encoded, const Record &record) {
    encoded->append(reinterpret_cast<const char *>(&record), sizeof record);
}

template <typename Record>
bool Take(std::string_view *encoded, Record *record) {
    if (encoded->size() < sizeof *record) {
        return false;
    }
    std::memcpy(record, encoded->data(), sizeof *record);
    encoded->remove_prefix(sizeof *record);
    return true;
}

bool TakeItem(std::string_view *encoded, ActionItem *item) {
    ItemHeader header;
    if (!Take(encoded, &header) || encoded->size() < header.byteCount) {
        return false;
    }
    *item = {header.key,     header.type,   header.code,
             header.integer, header.number, std::string(encoded->substr(0, header.byteCount))};
    encoded->remove_prefix(header.byteCount);
    return true;
}

bool TakeAction(std::string_view encoded, Action *action) {
    ActionHeader header;
    if (!Take(&encoded, &header) || header.mark != kMark) {
        return false;
    }
    action->event = header.event;
    for (uint32_t i = 0; i < header.itemCount; ++i) {
        ActionItem item;
        if (!TakeItem(&encoded, &item)) {
            return false;
        }
        action->items.push_back(std::move(item));
    }
    return true;
}

}  // namespace

const ActionItem *FindItem(const Action &action, OSType key) {
    const auto found = std::find_if(action.items.begin(), action.items.end(),
                                    [=](const ActionItem &item) { return item.key == key; });
    return found == action.items.end() ? nullptr : &*found;
}

Handle EncodeAction(const Action &action) {
    std::string encoded;
    Append(&encoded, ActionHeader{kMark, action.event, static_cast<uint32_t>(action.items.size())});
    for (const ActionItem &item : action.items) {
        Append(&encoded,
               ItemHeader{item.key, item.type, item.code, item.integer, item.number, item.bytes.size()});
        encoded += item.bytes;
    }
    Handle handle = NewHandle(static_cast<int64_t>(encoded.size()));
    if (handle != nullptr) {
        std::memcpy(*handle, encoded.data(), encoded.size());
    }
    return handle;
}

bool DecodeAction(Handle handle, Action *action) {
    *action = {};
    if (handle == nullptr ||
        !TakeAction(std::string_view(*handle, static_cast<size_t>(GetHandleSize(handle))), action)) {
        *action = {};
        return false;
    }
    return true;
}
