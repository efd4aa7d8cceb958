// What the plug-in keeps between the host's calls, in a handle that the host's data word holds.
#pragma once

#include "imagestore/named_images.h"
#include "photoshop/filter_record.h"
#include "platform/types.h"

enum : int16_t {
    phaseIdle = 0,
    phaseReading = 1,
    phaseFiltering = 2,
    phaseWriting = 3,
    phaseDone = 4,  // finished or failed
};

struct PluginState {
    int16_t phase;
    int16_t result;
    NamedImage *image;  // the colour planes; like the images below, null when there is none
    Handle parameters;  // the filter's parameter block
    intptr_t reserved[2];
    FilterRecord *filterRecord;  // the host's, refreshed on every call
    Ptr rowBuffer;               // one row of all planes, plus one byte per pixel
    NamedImage *alphaImage;      // the extra planes
    NamedImage *selectionImage;  // one byte per pixel
    Boolean haveMask;
    Boolean parametersSet;
    int32_t originLeft;
    int32_t originTop;
    int8_t maskAnd;  // AND of all mask bytes: negative as long as each was 128 or more
    int16_t depth;   // 8, 16 or 32
    Boolean maskHasZero;
    Boolean selectionUsed;
    OSErr imageError;           // from an image that could not be made
    Handle madeParameters;      // the host's parameters, if they were made here
    Boolean ownsParameters;     // and come from the Memory Manager: no host frees them
    Boolean userToBeAsked;      // Parameters was sent since the last run
    Boolean repeatsLastFilter;  // the run began without Parameters
    Rect requested;             // the row asked for last
};

// Tosses the images that exist.
void TossImages(PluginState *state);

// Tosses the images and frees the row buffer and the parameter block.
void ReleaseRun(PluginState *state);
