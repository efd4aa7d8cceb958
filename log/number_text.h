// Numbers and texts as they are written to files, and four-character codes read from texts.
#pragma once

#include "platform/types.h"

// About six significant digits: "0.0", "-2.50000", "1.23456e+4". Where rounding carries, a digit may come
// out, and is written, as "10".
void RealToString(float value, Str255 out);

// Write a text, then a tab and a carriage return if asked for. They stop at the first failure and return it.
OSErr WriteStr(int16_t file, ConstStringPtr text, Boolean tab, Boolean lineEnd);
OSErr WriteCString(int16_t file, const char *text, Boolean tab, Boolean lineEnd);
OSErr WriteVal(int16_t file, int32_t value, Boolean tab, Boolean lineEnd);
OSErr WriteReal(int16_t file, float value, Boolean tab, Boolean lineEnd);

// The first four characters, the first in the most significant byte.
OSType CStringToOSType(const char *text);
OSType PStringToOSType(ConstStringPtr text);
