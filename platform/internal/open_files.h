// The descriptors behind file references.
#pragma once

#include <cstdint>

constexpr int kClosed = -1;

// kClosed if no open file has the reference.
int DescriptorOf(int16_t refNum);
