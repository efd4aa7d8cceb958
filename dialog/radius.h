// The radius that the dialog lets the user choose.
#pragma once

#include <cstdint>

constexpr float kSmallestRadius = 1;
constexpr float kLargestRadius = 6;

// Not a number becomes the smallest.
float ClampedRadius(float radius);
float RadiusOfNumber(int32_t number);
// What the controls show.
int16_t ShownRadius(float radius);
