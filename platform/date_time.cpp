#include "platform/date_time.h"

#include <chrono>
#include <ctime>

#include "platform/internal/clock.h"

namespace {

// From the start of 1904 to that of 1970: 66 years, 17 of them leap years.
constexpr int64_t kSecondsTo1970 = (66 * 365 + 17) * int64_t{86400};

// What dates and times are made of; no system's zone is asked for, since the seconds include its offset.
tm FieldsOf(uint32_t seconds) {
    using namespace std::chrono;
    const sys_seconds time{std::chrono::seconds(seconds - kSecondsTo1970)};
    const auto day = floor<days>(time);
    const year_month_day date(day);
    const hh_mm_ss clock(time - day);
    tm fields = {};
    fields.tm_year = static_cast<int>(date.year()) - 1900;
    fields.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
    fields.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
    fields.tm_wday = static_cast<int>(weekday(day).c_encoding());
    fields.tm_yday = static_cast<int>((day - sys_days(date.year() / January / 1)).count());
    fields.tm_hour = static_cast<int>(clock.hours().count());
    fields.tm_min = static_cast<int>(clock.minutes().count());
    fields.tm_sec = static_cast<int>(clock.seconds().count());
    return fields;
}

void Format(uint32_t seconds, const char *format, Str255 text) {
    const tm fields = FieldsOf(seconds);
    text[0] = static_cast<uint8_t>(strftime(reinterpret_cast<char *>(text + 1), 255, format, &fields));
}

}  // namespace

void GetDateTime(uint32_t *seconds) {
    *seconds = static_cast<uint32_t>(LocalSeconds() + kSecondsTo1970);
}

void DateString(uint32_t seconds, uint8_t, Str255 text, Handle) {
    Format(seconds, "%x", text);
}

void TimeString(uint32_t seconds, Boolean wantSeconds, Str255 text, Handle) {
    Format(seconds, wantSeconds ? "%X" : "%H:%M", text);
}
