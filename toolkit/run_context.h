// What a run hands to the filter, the dialog and the log: the image's geometry, the host, and the
// preferences.
#pragma once

#include "imagestore/named_images.h"
#include "photoshop/filter_record.h"
#include "platform/types.h"

constexpr int32_t kPreferenceHeaderSize = 1024;
constexpr int32_t kPreferenceTailSize = 3072;
constexpr int32_t kPreferenceStringCount = 48;

// Fields of the preferences header, by their offsets; 32-bit floats.
constexpr int32_t kUnitIndexOffset = 8;
constexpr int32_t kLengthCalibrationOffset = 12;
constexpr int32_t kRememberedRadiusOffset = 744;

struct RunContext {
    int16_t width;
    int16_t height;
    int16_t colorPlanes;  // 3 for a CMYK run, which is filtered as RGB
    int16_t extraPlanes;
    FilterRecord *filterRecord;
    NamedImage *alphaImage;      // null without extra planes
    NamedImage *selectionImage;  // null when the whole image is selected
    uint8_t preferencesHeader[kPreferenceHeaderSize];
    uint8_t preferencesTail[kPreferenceTailSize];
    char *preferenceStrings[kPreferenceStringCount];  // owned texts of kTextSize bytes, or null
    char *logBasePath;                                // owned; null when the document was never saved
    int32_t originLeft;
    int32_t originTop;
    Boolean selectionUsed;
    Boolean maskHasZero;
};

float PreferenceFloat(const RunContext *context, int32_t offset);
void SetPreferenceFloat(RunContext *context, int32_t offset, float value);

// Tells the host how far the run is; nothing without a progress callback.
void DoProgress(const RunContext *context, int32_t done, int32_t total);
// True when the user asked to cancel.
Boolean CommandPeriod(const RunContext *context);
