// The kinds of noise by which filters are measured, the same on every machine.
#pragma once

#include "samples/picture_rgb.h"

struct Damage {
    const char *name;
    const char *amount;  // what its number counts
    void (*add)(PictureRGB *picture, int amount);
};

inline constexpr int kDamages = 5;
extern const Damage kDamage[kDamages];
