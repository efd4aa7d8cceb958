// Conversion between integers and decimal text.
#pragma once

#include "platform/types.h"

void NumToString(int32_t number, StringPtr text);
// Reads blanks, a sign and digits, and ignores the rest. Numbers that are too large become the largest;
// without digits the result is 0.
void StringToNum(ConstStringPtr text, int32_t *number);
