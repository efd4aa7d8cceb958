// The clock, and dates and times as text, in local time.
#pragma once

#include "platform/types.h"

enum : uint8_t {
    shortDate = 0,
    longDate = 1,
    abbrevDate = 2,
};

// Seconds since the start of 1904, local time.
void GetDateTime(uint32_t *seconds);
// Only the short date is supported. A null `resource` selects the system's conventions.
void DateString(uint32_t seconds, uint8_t form, Str255 text, Handle resource);
void TimeString(uint32_t seconds, Boolean wantSeconds, Str255 text, Handle resource);
