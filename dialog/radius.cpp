#include "dialog/radius.h"

#include <algorithm>

float ClampedRadius(float radius) {
    if (!(radius >= kSmallestRadius)) {
        return kSmallestRadius;
    }
    return std::min(radius, kLargestRadius);
}

float RadiusOfNumber(int32_t number) {
    constexpr auto kSmallest = static_cast<int32_t>(kSmallestRadius);
    constexpr auto kLargest = static_cast<int32_t>(kLargestRadius);
    return static_cast<float>(std::clamp(number, kSmallest, kLargest));
}

int16_t ShownRadius(float radius) {
    return static_cast<int16_t>(radius);
}
