// Operations on the two kinds of text used side by side: zero-terminated (CString) and length-prefixed, at
// most 255 characters (PString). Conversions only move bytes; they know no character sets or case.
//
// Null texts count as empty, and null destinations are ignored. Buffer sizes include the terminating zero; a
// size of 0 or less does nothing. Source and destination may overlap.
#pragma once

#include "platform/types.h"

// The buffer size of every preference string, setting text and path: 513 characters and the zero.
constexpr int32_t kTextSize = 514;

// Zero-filled, at least one byte; null when memory is short. The caller releases it with DisposeCString.
char *AllocateCString(int32_t size);
// Leaves nothing readable behind: blocks of more than 9 bytes are overwritten with "<deleted>", others lose
// their first byte.
void DisposeCString(char *text);

// In place. The block has room for one byte more than the text's characters.
void ConvertPStringToCString(char *text);
// In place. Texts longer than 255 characters keep the first 255.
void ConvertCStringToPString(char *text);

// Cuts to size - 1 characters.
void DuplicateCString(const char *source, char *destination, int32_t size);
void DuplicatePString(ConstStringPtr source, StringPtr destination);

// `out` may be `a`. The second text is cut so that the total does not exceed 255. Returns the new length.
int32_t ConcatPStrings(ConstStringPtr a, ConstStringPtr b, StringPtr out);
// Cuts to size - 1 characters, taking from `a` first.
void ConcatCStrings(const char *a, const char *b, char *out, int32_t size);
