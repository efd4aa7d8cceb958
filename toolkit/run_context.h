// What a run passes to the filter, the dialog and the log: the image's geometry, the host, and the
// preferences.
#pragma once

#include "imagestore/named_images.h"
#include "photoshop/filter_record.h"
#include "platform/types.h"

// The layout of the preferences file, which all filters of the family share; sizes are in bytes.
constexpr int32_t kPreferenceHeaderSize = 1024;
constexpr int32_t kPreferenceTailSize = 3072;
constexpr int32_t kPreferenceStringCount = 48;

// Byte offsets of the fields in the preferences header that this filter uses; each is a 32-bit float.
constexpr int32_t kUnitIndexOffset = 8;           // the unit of measured lengths, see settings/key_names.h
constexpr int32_t kLengthCalibrationOffset = 12;  // a pixel's length in that unit; 0: not calibrated

struct RunContext {
    int16_t width;  // of the filter rectangle, in pixels
    int16_t height;
    int16_t colorPlanes;         // 3 for a CMYK run, which is filtered as RGB
    int16_t extraPlanes;         // transparency, alpha and spot planes
    FilterRecord *filterRecord;  // the host's
    NamedImage *alphaImage;      // the extra planes; null when there are none
    NamedImage *selectionImage;  // the mask, or the transparency; null when the filter is shown no selection
    uint8_t preferencesHeader[kPreferenceHeaderSize];
    uint8_t preferencesTail[kPreferenceTailSize];
    char *preferenceStrings[kPreferenceStringCount];  // owned, kTextSize bytes each; or null
    char *logBasePath;                                // owned; null when the document was never saved
    int32_t originLeft;                               // of the filter rectangle, in document coordinates
    int32_t originTop;
    Boolean selectionUsed;  // the selection image is the host's mask
    Boolean maskHasZero;    // some pixel is fully transparent: its first extra sample is 0
};

float PreferenceFloat(const RunContext *context, int32_t offset);
void SetPreferenceFloat(RunContext *context, int32_t offset, float value);

// Reports progress to the host; does nothing without a progress callback.
void DoProgress(const RunContext *context, int32_t done, int32_t total);
// True when the user has asked to cancel.
Boolean CommandPeriod(const RunContext *context);
