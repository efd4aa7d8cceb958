// The descriptors behind file references. Internal to this folder.
#pragma once

#include <cstdint>

constexpr int kClosed = -1;

// kClosed for a reference that no open file has.
int DescriptorOf(int16_t refNum);
