// The descriptors behind file references.
#pragma once

#include <cstdint>

constexpr int kClosed = -1;

// kClosed for a reference that no open file has.
int DescriptorOf(int16_t refNum);
