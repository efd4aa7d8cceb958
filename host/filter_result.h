// What a filter's result means to the user.
#pragma once

#include <string>

#include "host/failure.h"
#include "host/filter_run.h"

// Nothing for noErr.
MaybeFailure FailureOfFilter(const FilterOutcome &outcome, const std::string &file);
