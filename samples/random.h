// xorshift64*, since the standard library's distributions differ between machines.
#pragma once

#include <cstdint>

struct Generator {
    uint64_t state = 0x9E3779B97F4A7C15;  // arbitrary, but not 0; 2^64 over the golden ratio
};

// Returns 0 to limit - 1.
inline uint32_t Next(Generator *generator, uint32_t limit) {
    uint64_t &state = generator->state;
    state ^= state >> 12;
    state ^= state << 25;
    state ^= state >> 27;
    return static_cast<uint32_t>((state * 0x2545F4914F6CDD1D) >> 33) % limit;
}
