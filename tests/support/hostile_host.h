// A host that follows only one rule: whatever it claims to deliver exists.
#pragma once

#include <cstddef>
#include <cstdint>

// Makes the calls that `bytes` encode: selectors in any order and repeated, with records of any shape. Ends
// with calls that release what the plug-in holds.
void PlayHostileHost(const uint8_t *bytes, size_t size);
