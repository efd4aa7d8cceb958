// What a host says about the document being filtered.
#pragma once

#include <cstddef>

#include "platform/types.h"

struct ReadChannelDesc;

struct VRect {
    int32_t top, left, bottom, right;
};

// Check maxVersion before reading the fields that came with version 1 or 2.
struct ReadImageDocumentDesc {
    int32_t minVersion;
    int32_t maxVersion;
    int32_t imageMode;
    int32_t depth;
    VRect bounds;
    Fixed hResolution;
    Fixed vResolution;
    uint8_t redLUT[256];
    uint8_t greenLUT[256];
    uint8_t blueLUT[256];
    ReadChannelDesc *targetCompositeChannels;
    ReadChannelDesc *targetTransparency;
    ReadChannelDesc *targetLayerMask;
    ReadChannelDesc *mergedCompositeChannels;
    ReadChannelDesc *mergedTransparency;
    ReadChannelDesc *alphaChannels;
    ReadChannelDesc *selection;
    FSSpec *documentFileSpec;  // from version 1; null for a document that was never saved
    void *layersDescriptor;    // from version 2
    int32_t documentType;
    ReadImageDocumentDesc *next;
};

static_assert(offsetof(ReadImageDocumentDesc, targetCompositeChannels) == 808);
static_assert(offsetof(ReadImageDocumentDesc, documentFileSpec) == 864);
