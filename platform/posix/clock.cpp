#include "platform/internal/clock.h"

#include <ctime>

int64_t LocalSeconds() {
    const time_t now = time(nullptr);
    tm fields;
    localtime_r(&now, &fields);
    return now + fields.tm_gmtoff;
}
