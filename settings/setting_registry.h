// The settings of a filter: one flat block of typed entries, inputs first, then outputs.
//
// Every entry has a four-character key, a range and a value. Inputs and outputs are each numbered from 0; add
// all inputs before the first output. Past the block's end, getters return 0 or null and setters do nothing.
#pragma once

#include "platform/types.h"

constexpr OSType kSettingLong = FourCharCode("long");
constexpr OSType kSettingFloat = FourCharCode("doub");  // although the value is single precision
constexpr OSType kSettingBoolean = FourCharCode("bool");
constexpr OSType kSettingString = FourCharCode("Pth ");
// Any other type is a radio setting: the code of its enumeration.

struct SPEntry {
    OSType key;
    OSType type;
    int32_t active;  // 1 once added
    int32_t min;     // a long, or the bits of a float, like max and value
    int32_t max;
    int32_t value;
    char *text;  // the string of a string setting, owned by the entry; or null
};

// The header of a block. Entries follow it from the third slot on.
struct SPBlock {
    uint32_t reserved1[3];    // zero; neither read nor set, like reserved2
    uint32_t inputCount;      // entries 0 to inputCount - 1
    uint32_t outputCount;     // the entries after those
    OSType signature;         // the filter's own code; 'udef' until the filter has declared its settings
    uint32_t needsMaskImage;  // a Boolean: the filter wants a mask image prepared
    uint32_t skipWriteback;   // a Boolean: the result is not to go back to the host's image
    uint32_t reserved2[4];
};

// A zero-filled block of `count` slots, the first two of which are the header; null when memory is short.
SPBlock *_AllocateSPBlock(int32_t count);
// Frees only the block: the caller must clear the entries' texts first.
void _DisposeSPBlock(SPBlock *block);
// Drops all entries; does not free their texts.
void InitializeSPSettings(SPBlock *block, OSType signature, Boolean needsMaskImage, Boolean skipWriteback);
uint32_t CountSPInputs(const SPBlock *block);
uint32_t CountSPOutputs(const SPBlock *block);
OSType GetSPWEMBSignature(const SPBlock *block);
Boolean SPNeedsMaskImage(const SPBlock *block);
Boolean SPSkipWritebackStatus(const SPBlock *block);

// The entry of an input or output, or null past the block's end. Output j is entry inputCount + j.
SPEntry *SPInputEntry(SPBlock *block, uint32_t index);
SPEntry *SPOutputEntry(SPBlock *block, uint32_t index);

// Each appends an entry and returns its index; a full block stores nothing but still returns the index. A
// repeated key makes a second entry. Strings are copied; a null text stays null. The search for a CString's
// final zero starts at the index given by its first byte, so callers pass zero-filled texts of kTextSize
// bytes.
uint32_t AddSPInputSettingLong(SPBlock *block, OSType key, int32_t min, int32_t max, int32_t value);
uint32_t AddSPInputSettingFloat(SPBlock *block, OSType key, float min, float max, float value);
uint32_t AddSPInputSettingRadio(SPBlock *block, OSType key, OSType type, int32_t min, int32_t max,
                                int32_t value);
uint32_t AddSPInputSettingBoolean(SPBlock *block, OSType key, Boolean value);
uint32_t AddSPInputSettingCString(SPBlock *block, OSType key, const char *text);
uint32_t AddSPInputSettingPString(SPBlock *block, OSType key, ConstStringPtr text);
uint32_t AddSPOutputSettingLong(SPBlock *block, OSType key, int32_t min, int32_t max, int32_t value);
uint32_t AddSPOutputSettingFloat(SPBlock *block, OSType key, float min, float max, float value);
uint32_t AddSPOutputSettingRadio(SPBlock *block, OSType key, OSType type, int32_t min, int32_t max,
                                 int32_t value);
uint32_t AddSPOutputSettingBoolean(SPBlock *block, OSType key, Boolean value);
uint32_t AddSPOutputSettingCString(SPBlock *block, OSType key, const char *text);
uint32_t AddSPOutputSettingPString(SPBlock *block, OSType key, ConstStringPtr text);

int32_t GetSPInputSettingLong(SPBlock *block, uint32_t index);
int32_t GetSPInputSettingRadio(SPBlock *block, uint32_t index);
float GetSPInputSettingFloat(SPBlock *block, uint32_t index);
Boolean GetSPInputSettingBoolean(SPBlock *block, uint32_t index);
char *GetSPInputSettingCString(SPBlock *block, uint32_t index);  // the block keeps it
int32_t GetSPOutputSettingLong(SPBlock *block, uint32_t index);
int32_t GetSPOutputSettingRadio(SPBlock *block, uint32_t index);
float GetSPOutputSettingFloat(SPBlock *block, uint32_t index);
Boolean GetSPOutputSettingBoolean(SPBlock *block, uint32_t index);
char *GetSPOutputSettingCString(SPBlock *block, uint32_t index);

void SetSPInputSettingLong(SPBlock *block, uint32_t index, int32_t value);
void SetSPInputSettingRadio(SPBlock *block, uint32_t index, int32_t value);
void SetSPInputSettingFloat(SPBlock *block, uint32_t index, float value);
void SetSPInputSettingBoolean(SPBlock *block, uint32_t index, Boolean value);
void SetSPInputSettingCString(SPBlock *block, uint32_t index, const char *text);
void SetSPInputSettingPString(SPBlock *block, uint32_t index, ConstStringPtr text);
void SetSPOutputSettingLong(SPBlock *block, uint32_t index, int32_t value);
void SetSPOutputSettingRadio(SPBlock *block, uint32_t index, int32_t value);
void SetSPOutputSettingFloat(SPBlock *block, uint32_t index, float value);
void SetSPOutputSettingBoolean(SPBlock *block, uint32_t index, Boolean value);
void SetSPOutputSettingCString(SPBlock *block, uint32_t index, const char *text);
// Unlike the other PString calls, stores the length byte and the first length - 1 characters.
void SetSPOutputSettingPString(SPBlock *block, uint32_t index, ConstStringPtr text);

// Called wherever a value would change byte order on its way to a file or a host. Values stay in native
// order.
int32_t _ByteSwapLong(int32_t value);
float _ByteSwapFloat(float value);
OSType _ByteSwapOSType(OSType value);
