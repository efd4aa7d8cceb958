// What a filter's result means to the user.
#pragma once

#include <string>

#include "host/filter/filter_run.h"
#include "host/report/failure.h"

// Nothing for noErr.
MaybeFailure FailureOfFilter(const FilterOutcome &outcome, const std::string &file);
