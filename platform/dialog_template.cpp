// The two resources that define a dialog. By now their numbers are in native byte order.
#include <cstring>

#include "platform/internal/dialog_model.h"
#include "platform/memory.h"

namespace {

// Reads a resource from front to back; reads past its end give 0 and clear `sound`.
struct Reader {
    const uint8_t *next;
    const uint8_t *end;
    bool sound = true;

    template <typename Number>
    Number Read() {
        Number number = {};
        if (end - next < static_cast<ptrdiff_t>(sizeof number)) {
            sound = false;
            return number;
        }
        std::memcpy(&number, next, sizeof number);
        next += sizeof number;
        return number;
    }

    std::string ReadString() {
        const auto length = static_cast<ptrdiff_t>(Read<uint8_t>());
        if (end - next < length) {
            sound = false;
            return {};
        }
        next += length;
        return std::string(next - length, next);
    }
};

Reader ReaderOf(Handle resource) {
    const auto *bytes = reinterpret_cast<const uint8_t *>(*resource);
    return {bytes, bytes + GetHandleSize(resource)};
}

ControlRecord ItemControl(const Rect &bounds, const std::string &title) {
    return {nullptr, bounds, title, 0, 0, 0, 1, true, 0};
}

}  // namespace

bool model::ReadWindowTemplate(Handle resource, WindowRecord *window, int16_t *itemListID) {
    Reader reader = ReaderOf(resource);
    window->bounds = reader.Read<Rect>();
    window->definition = reader.Read<int16_t>();
    window->visible = reader.Read<uint8_t>() != 0;
    reader.Read<uint8_t>();
    reader.Read<int16_t>();  // the close box: modal boxes have none
    window->reference = reader.Read<int32_t>();
    *itemListID = reader.Read<int16_t>();
    window->title = reader.ReadString();
    return reader.sound && ports::IsSound(window->bounds) && !ports::IsEmpty(window->bounds);
}

bool model::ReadItemList(Handle resource, DialogRecord *dialog) {
    Reader reader = ReaderOf(resource);
    const int32_t count = reader.Read<int16_t>() + 1;
    for (int32_t i = 0; i < count && reader.sound; ++i) {
        reader.Read<int32_t>();  // where a loaded item list keeps its handles
        DialogItem item = {};
        item.bounds = reader.Read<Rect>();
        reader.sound = reader.sound && ports::IsSound(item.bounds);
        item.type = reader.Read<uint8_t>();
        item.text.characters = reader.ReadString();
        if (item.text.characters.size() % 2 != 0 && reader.next != reader.end) {
            reader.Read<uint8_t>();
        }
        if (IsControlItem(item)) {
            item.control = AddControl(dialog, ItemControl(item.bounds, item.text.characters));
        }
        dialog->items.push_back(std::move(item));
    }
    return reader.sound;
}
