#include "platform/date_time.h"

#include <ctime>

namespace {

// From the start of 1904 to that of 1970: 66 years, 17 of them leap years.
constexpr int64_t kSecondsTo1970 = (66 * 365 + 17) * int64_t{86400};

// Local seconds are broken down as if they were UTC: they already include the offset.
void Format(uint32_t seconds, const char *format, Str255 text) {
    const auto local = static_cast<time_t>(seconds - kSecondsTo1970);
    tm fields;
    gmtime_r(&local, &fields);
    text[0] = static_cast<uint8_t>(strftime(reinterpret_cast<char *>(text + 1), 255, format, &fields));
}

}  // namespace

void GetDateTime(uint32_t *seconds) {
    const time_t now = time(nullptr);
    tm fields;
    localtime_r(&now, &fields);
    *seconds = static_cast<uint32_t>(now + fields.tm_gmtoff + kSecondsTo1970);
}

void DateString(uint32_t seconds, uint8_t, Str255 text, Handle) {
    Format(seconds, "%x", text);
}

void TimeString(uint32_t seconds, Boolean wantSeconds, Str255 text, Handle) {
    Format(seconds, wantSeconds ? "%X" : "%H:%M", text);
}
