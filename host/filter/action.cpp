#include "host/filter/action.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "platform/memory.h"
#include "platform/packing.h"

namespace {

constexpr OSType kMark = FourCharCode("actn");

struct ActionHeader {
    OSType mark;
    OSType event;
    uint32_t itemCount;
};

// The item's bytes follow.
struct ItemHeader {
    OSType key;
    OSType type;
    OSType code;
    uint32_t integer;
    double number;
};

bool TakeItem(std::string_view *packed, ActionItem *item) {
    ItemHeader header;
    if (!TakeRecord(packed, &header) || !TakeText(packed, &item->bytes)) {
        return false;
    }
    item->key = header.key;
    item->type = header.type;
    item->code = header.code;
    item->integer = header.integer;
    item->number = header.number;
    return true;
}

bool TakeAction(std::string_view packed, Action *action) {
    ActionHeader header;
    if (!TakeRecord(&packed, &header) || header.mark != kMark) {
        return false;
    }
    action->event = header.event;
    for (uint32_t i = 0; i < header.itemCount; ++i) {
        ActionItem item;
        if (!TakeItem(&packed, &item)) {
            return false;
        }
        action->items.push_back(std::move(item));
    }
    return packed.empty();
}

}  // namespace

const ActionItem *FindItem(const Action &action, OSType key) {
    const auto found = std::find_if(action.items.begin(), action.items.end(),
                                    [=](const ActionItem &item) { return item.key == key; });
    return found == action.items.end() ? nullptr : &*found;
}

std::string PackAction(const Action &action) {
    std::string packed;
    AppendRecord(&packed, ActionHeader{kMark, action.event, static_cast<uint32_t>(action.items.size())});
    for (const ActionItem &item : action.items) {
        AppendRecord(&packed, ItemHeader{item.key, item.type, item.code, item.integer, item.number});
        AppendText(&packed, item.bytes);
    }
    return packed;
}

bool UnpackAction(std::string_view packed, Action *action) {
    *action = {};
    const bool sound = TakeAction(packed, action);
    if (!sound) {
        *action = {};
    }
    return sound;
}

Handle EncodeAction(const Action &action) {
    const std::string packed = PackAction(action);
    Handle handle = NewHandle(static_cast<int64_t>(packed.size()));
    if (handle != nullptr) {
        std::memcpy(*handle, packed.data(), packed.size());
    }
    return handle;
}

bool DecodeAction(Handle handle, Action *action) {
    const std::string_view packed =
        handle == nullptr ? std::string_view()
                          : std::string_view(*handle, static_cast<size_t>(GetHandleSize(handle)));
    return UnpackAction(packed, action);
}
