#include "platform/text_utils.h"

#include <algorithm>
#include <string>

void NumToString(int32_t number, StringPtr text) {
    const std::string digits = std::to_string(number);
    text[0] = static_cast<uint8_t>(digits.size());
    std::copy(digits.begin(), digits.end(), text + 1);
}

void StringToNum(ConstStringPtr text, int32_t *number) {
    const uint8_t *next = text + 1;
    const uint8_t *end = next + text[0];
    next = std::find_if(next, end, [](uint8_t c) { return c != ' '; });
    const bool negative = next != end && *next == '-';
    if (next != end && (*next == '-' || *next == '+')) {
        ++next;
    }
    const int64_t limit = negative ? -int64_t{INT32_MIN} : INT32_MAX;
    int64_t value = 0;
    for (; next != end && *next >= '0' && *next <= '9'; ++next) {
        value = std::min(value * 10 + (*next - '0'), limit);
    }
    *number = static_cast<int32_t>(negative ? -value : value);
}
