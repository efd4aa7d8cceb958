// Two samples become one between them.
#pragma once

#include <cmath>
#include <cstdint>

// `part` of `whole` parts of the result, the rest of the source; rounded to the nearest.
template <typename Sample>
Sample Blend(Sample result, Sample source, uint32_t part, uint32_t whole) {
    return static_cast<Sample>((part * result + (whole - part) * source + whole / 2) / whole);
}

// What is not finite has no blend.
inline float Blend(float result, float source, uint32_t part, uint32_t whole) {
    if (part == whole || !std::isfinite(source)) {
        return result;
    }
    return part == 0 ? source
                     : static_cast<float>((part * double{result} + (whole - part) * double{source}) / whole);
}
