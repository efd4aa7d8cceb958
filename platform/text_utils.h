// Whole numbers and their decimal texts.
#pragma once

#include "platform/types.h"

#pragma GCC visibility push(default)

extern "C" {

void NumToString(int32_t number, StringPtr text);
// Blanks, a sign, digits; what follows is not looked at. Too large a number becomes the largest; no digits
// give 0.
void StringToNum(ConstStringPtr text, int32_t *number);

}  // extern "C"

#pragma GCC visibility pop
