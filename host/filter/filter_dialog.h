// The part that the filter's own dialog has in a run.
#pragma once

#include <cstdint>

struct FilterDialog {
    enum class Use : int8_t {
        none,      // the action is played back without it
        answered,  // it is given a radius, as a user would, and nobody sees it
        shown,     // on the screen
    };
    Use use = Use::none;
    int32_t radius = 0;  // what it is answered with
};
