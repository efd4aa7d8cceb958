// Texts in the two forms used side by side: zero-terminated (CString) and length-prefixed, at most 255
// characters (PString). All conversions are byte moves: no character set, no case.
//
// Null texts count as empty, null results are ignored. Sizes of buffers include the terminating zero; a size
// of 0 or less does nothing. Source and result may overlap.
#pragma once

#include "platform/types.h"

// The room of every preference string, setting text and path: 513 characters and the zero.
constexpr int32_t kTextSize = 514;

// Zero-filled, at least one byte; null when memory is short. The caller releases it with DisposeCString.
char *AllocateCString(int32_t size);
// Leaves nothing readable behind: blocks of more than 9 bytes are overwritten with "<deleted>", others lose
// their first byte.
void DisposeCString(char *text);

// In place. The block holds one byte more than the text has characters.
void ConvertPStringToCString(char *text);
// In place. Texts longer than 255 keep their first 255 characters.
void ConvertCStringToPString(char *text);

// Cuts to size - 1 characters.
void DuplicateCString(const char *source, char *destination, int32_t size);
void DuplicatePString(ConstStringPtr source, StringPtr destination);

// `out` may be `a`. The second text is cut where the sum exceeds 255. Returns the new length.
int32_t ConcatPStrings(ConstStringPtr a, ConstStringPtr b, StringPtr out);
// Cuts to size - 1 characters, `a` whole when it fits.
void ConcatCStrings(const char *a, const char *b, char *out, int32_t size);
