// A host that keeps to none of the rules but one: what it says it delivers is there.
#pragma once

#include <cstddef>
#include <cstdint>

// Plays the calls that `bytes` spell: selectors in any order and repeated, with records of any shape. Ends
// with calls that release what the plug-in holds.
void PlayHostileHost(const uint8_t *bytes, size_t size);
