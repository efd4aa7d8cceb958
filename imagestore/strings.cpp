#include "imagestore/strings.h"

#include <algorithm>
#include <cstring>

#include "platform/memory.h"

namespace {

constexpr int32_t kMaxPStringLength = 255;
constexpr char kDeletedMark[] = "<deleted>";
// Too small for "<deleted>" and its zero.
constexpr int64_t kLargestUnmarkedBlock = 9;

// The number of characters before the zero, at most `limit`.
int32_t BoundedLength(const char *text, int32_t limit) {
    return text == nullptr ? 0 : static_cast<int32_t>(strnlen(text, static_cast<size_t>(limit)));
}

}  // namespace

char *AllocateCString(int32_t size) {
    return NewPtrClear(std::max(size, 1));
}

void DisposeCString(char *text) {
    if (text == nullptr) {
        return;
    }
    // Volatile, or the compiler would drop stores to memory that is about to be freed.
    volatile char *remains = text;
    if (GetPtrSize(text) > kLargestUnmarkedBlock) {
        for (size_t i = 0; i < sizeof kDeletedMark; ++i) {
            remains[i] = kDeletedMark[i];
        }
    } else {
        remains[0] = 0;
    }
    DisposePtr(text);
}

void ConvertPStringToCString(char *text) {
    if (text == nullptr) {
        return;
    }
    const int32_t length = static_cast<uint8_t>(text[0]);
    BlockMoveData(text + 1, text, length);
    text[length] = 0;
}

void ConvertCStringToPString(char *text) {
    if (text == nullptr) {
        return;
    }
    const int32_t length = BoundedLength(text, kMaxPStringLength);
    BlockMoveData(text, text + 1, length);
    text[0] = static_cast<char>(length);
}

void DuplicateCString(const char *source, char *destination, int32_t size) {
    if (destination == nullptr || size <= 0) {
        return;
    }
    const int32_t length = BoundedLength(source, size - 1);
    BlockMoveData(source, destination, length);
    destination[length] = 0;
}

void DuplicatePString(ConstStringPtr source, StringPtr destination) {
    if (destination == nullptr) {
        return;
    }
    if (source == nullptr) {
        destination[0] = 0;
        return;
    }
    BlockMoveData(source, destination, source[0] + 1);
}

int32_t ConcatPStrings(ConstStringPtr a, ConstStringPtr b, StringPtr out) {
    if (out == nullptr) {
        return 0;
    }
    const int32_t aLength = a == nullptr ? 0 : a[0];
    const int32_t bLength = std::min(b == nullptr ? 0 : b[0], kMaxPStringLength - aLength);
    // The second text first, because `out` may be `a` or `b`.
    BlockMoveData(b == nullptr ? nullptr : b + 1, out + 1 + aLength, bLength);
    BlockMoveData(a == nullptr ? nullptr : a + 1, out + 1, aLength);
    out[0] = static_cast<uint8_t>(aLength + bLength);
    return aLength + bLength;
}

void ConcatCStrings(const char *a, const char *b, char *out, int32_t size) {
    if (out == nullptr || size <= 0) {
        return;
    }
    const int32_t aLength = BoundedLength(a, size - 1);
    const int32_t bLength = BoundedLength(b, size - 1 - aLength);
    BlockMoveData(b, out + aLength, bLength);
    BlockMoveData(a, out, aLength);
    out[aLength + bLength] = 0;
}
