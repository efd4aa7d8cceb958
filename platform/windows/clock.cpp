#include "platform/internal/clock.h"

#include <windows.h>

namespace {

// Windows counts tenths of microseconds from the start of 1601.
constexpr int64_t kTicksPerSecond = 10'000'000;
constexpr int64_t kSecondsTo1970 = 11'644'473'600;

}  // namespace

int64_t LocalSeconds() {
    SYSTEMTIME now;
    FILETIME time;
    GetLocalTime(&now);
    SystemTimeToFileTime(&now, &time);
    const int64_t ticks = static_cast<int64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
    return ticks / kTicksPerSecond - kSecondsTo1970;
}
