#include "platform/internal/dialog_resources.h"

#include <utility>

namespace {

constexpr OSType kDialogTemplate = FourCharCode("DLOG");
constexpr OSType kDialogItems = FourCharCode("DITL");

// Field widths of a template: bounds, definition, visible, go-away, reference value, items; then the title.
constexpr size_t kTemplateFields[] = {2, 2, 2, 2, 2, 1, 1, 1, 1, 4, 2};
// Field widths of an item up to its type and data: placeholder, rectangle.
constexpr size_t kItemFields[] = {4, 2, 2, 2, 2};

struct Cursor {
    uint8_t *at;
    size_t left;
};

bool Skip(Cursor *cursor, size_t count) {
    if (count > cursor->left) {
        return false;
    }
    cursor->at += count;
    cursor->left -= count;
    return true;
}

template <size_t kCount>
bool SwapFields(Cursor *cursor, const size_t (&widths)[kCount]) {
    for (const size_t width : widths) {
        uint8_t *field = cursor->at;
        if (!Skip(cursor, width)) {
            return false;
        }
        for (size_t i = 0; i < width / 2; ++i) {
            std::swap(field[i], field[width - 1 - i]);
        }
    }
    return true;
}

bool SwapItems(Cursor cursor) {
    if (cursor.left < 2) {
        return false;
    }
    const int items = static_cast<int16_t>(cursor.at[0] << 8 | cursor.at[1]) + 1;
    constexpr size_t kCountField[] = {2};
    SwapFields(&cursor, kCountField);
    for (int i = 0; i < items; ++i) {
        if (!SwapFields(&cursor, kItemFields) || cursor.left < 2) {
            return false;
        }
        const size_t length = cursor.at[1];
        // Data is padded to an even length; the last item's padding may be missing.
        if (!Skip(&cursor, 2 + length) || (length % 2 != 0 && !Skip(&cursor, 1) && i + 1 < items)) {
            return false;
        }
    }
    return true;
}

}  // namespace

// The bytes are changed through the cursor.
// NOLINTNEXTLINE(readability-non-const-parameter)
bool ToNativeByteOrder(OSType type, uint8_t *bytes, size_t size) {
    Cursor cursor = {bytes, size};
    if (type == kDialogTemplate) {
        return SwapFields(&cursor, kTemplateFields) && cursor.left > 0 &&
               Skip(&cursor, 1 + size_t{cursor.at[0]});
    }
    return type != kDialogItems || SwapItems(cursor);
}
