// The filter's one setting, as its settings block and recorded actions have it.
#pragma once

#include "platform/types.h"

constexpr OSType kRadiusKey = FourCharCode("nRad");

// What is taken from an action. The dialog and the filter go further, and what they used is recorded.
constexpr int kMinPlayedRadius = 0;
constexpr int kMaxPlayedRadius = 4;
