// A setting as a line of text, for listings.
#pragma once

#include "settings/setting_registry.h"

// Write one entry to an open file; do nothing past the block's end.
void _WriteSPInputParam(SPBlock *block, uint32_t index, int16_t fileRef);
void _WriteSPOutputParam(SPBlock *block, uint32_t index, int16_t fileRef);
