// The record through which a host and a filter plug-in talk, on 64-bit little-endian machines.
//
// The host owns the record and everything it points to, unless a field's comment says otherwise. Rectangles
// are in document coordinates; an empty rectangle requests nothing.
#pragma once

#include <cstddef>

#include "photoshop/descriptors.h"
#include "photoshop/document_info.h"
#include "photoshop/selectors.h"
#include "photoshop/suites.h"
#include "platform/types.h"

struct EventRecord;
struct ResourceProcs;

struct FilterColor {
    uint8_t component[4];
};

struct PlugInMonitor {
    Fixed gamma;
    Fixed redX, redY;
    Fixed greenX, greenY;
    Fixed blueX, blueY;
    Fixed whiteX, whiteY;
    Fixed ambient;
};

// Pointers sit at 4-byte offsets.
#pragma pack(push, 4)
struct FilterRecord {
    int32_t serialNumber;
    Boolean (*abortProc)();
    void (*progressProc)(int32_t done, int32_t total);
    Handle parameters;  // made by the plug-in, kept by the host from run to run
    Point imageSize;
    int16_t planes;
    Rect filterRect;
    RGBColor background;
    RGBColor foreground;
    int32_t maxSpace;
    int32_t bufferSpace;

    Rect inRect;  // what the plug-in wants to read
    int16_t inLoPlane;
    int16_t inHiPlane;
    Rect outRect;  // what it is about to write
    int16_t outLoPlane;
    int16_t outHiPlane;

    void *inData;  // interleaved: planes inLoPlane..inHiPlane of each pixel together
    int32_t inRowBytes;
    void *outData;
    int32_t outRowBytes;

    Boolean isFloating;
    Boolean haveMask;
    Boolean autoMask;
    Rect maskRect;
    void *maskData;  // one byte per pixel, 255 = selected
    int32_t maskRowBytes;

    FilterColor backColor;
    FilterColor foreColor;
    OSType hostSig;
    void (*hostProc)(int16_t selector, intptr_t *data);

    int16_t imageMode;
    Fixed imageHRes;
    Fixed imageVRes;
    Point floatCoord;
    Point wholeSize;
    PlugInMonitor monitor;

    void *platformData;
    BufferProcs *bufferProcs;
    ResourceProcs *resourceProcs;
    void (*processEvent)(EventRecord *event);
    OSErr (*displayPixels)(const void *source, const VRect *sourceRect, int32_t dstRow, int32_t dstCol,
                           void *platformContext);
    HandleProcs *handleProcs;

    Boolean supportsDummyChannels;
    Boolean supportsAlternateLayouts;
    int16_t wantLayout;
    int16_t filterCase;  // 1 to 7
    int16_t dummyPlaneValue;
    void *premiereHook;
    OSErr (*advanceState)();  // null in hosts that drive every request with Continue

    Boolean supportsAbsolute;
    Boolean wantsAbsolute;
    OSErr (*getPropertyObsolete)(OSType signature, OSType key, int32_t index, int32_t *simple,
                                 Handle *complex);
    Boolean cannotUndo;
    Boolean supportsPadding;
    int16_t inputPadding;
    int16_t outputPadding;
    int16_t maskPadding;
    char samplingSupport;
    char reservedByte;
    Fixed inputRate;
    Fixed maskRate;
    OSErr (*colorServices)(void *info);

    int16_t inLayerPlanes;
    int16_t inTransparencyMask;
    int16_t inLayerMasks;
    int16_t inInvertedLayerMasks;
    int16_t inNonLayerPlanes;
    int16_t outLayerPlanes;
    int16_t outTransparencyMask;
    int16_t outLayerMasks;
    int16_t outInvertedLayerMasks;
    int16_t outNonLayerPlanes;
    int16_t absLayerPlanes;
    int16_t absTransparencyMask;
    int16_t absLayerMasks;
    int16_t absInvertedLayerMasks;
    int16_t absNonLayerPlanes;

    int16_t inPreDummyPlanes;
    int16_t inPostDummyPlanes;
    int16_t outPreDummyPlanes;
    int16_t outPostDummyPlanes;
    int32_t inColumnBytes;
    int32_t inPlaneBytes;
    int32_t outColumnBytes;
    int32_t outPlaneBytes;

    void *imageServicesProcs;
    void *propertyProcs;

    int16_t inTileHeight;
    int16_t inTileWidth;
    Point inTileOrigin;
    int16_t absTileHeight;
    int16_t absTileWidth;
    Point absTileOrigin;
    int16_t outTileHeight;
    int16_t outTileWidth;
    Point outTileOrigin;
    int16_t maskTileHeight;
    int16_t maskTileWidth;
    Point maskTileOrigin;

    PIDescriptorParameters *descriptorParameters;
    Str255 *errorString;  // the plug-in may write a message here and return errReportString
    void *channelPortProcs;
    ReadImageDocumentDesc *documentInfo;
    void *sSPBasic;
    void *plugInRef;
    int32_t depth;  // bits per sample

    Handle iCCprofileData;
    int32_t iCCprofileSize;
    int32_t canUseICCProfiles;

    char reserved[256];  // zero
};
#pragma pack(pop)

// These offsets are the published binary interface.
#define LOCK_OFFSET(field, offset) static_assert(offsetof(FilterRecord, field) == (offset))
LOCK_OFFSET(serialNumber, 0);
LOCK_OFFSET(abortProc, 4);
LOCK_OFFSET(progressProc, 12);
LOCK_OFFSET(parameters, 20);
LOCK_OFFSET(imageSize, 28);
LOCK_OFFSET(planes, 32);
LOCK_OFFSET(filterRect, 34);
LOCK_OFFSET(background, 42);
LOCK_OFFSET(foreground, 48);
LOCK_OFFSET(maxSpace, 56);
LOCK_OFFSET(bufferSpace, 60);
LOCK_OFFSET(inRect, 64);
LOCK_OFFSET(inLoPlane, 72);
LOCK_OFFSET(inHiPlane, 74);
LOCK_OFFSET(outRect, 76);
LOCK_OFFSET(outLoPlane, 84);
LOCK_OFFSET(outHiPlane, 86);
LOCK_OFFSET(inData, 88);
LOCK_OFFSET(inRowBytes, 96);
LOCK_OFFSET(outData, 100);
LOCK_OFFSET(outRowBytes, 108);
LOCK_OFFSET(isFloating, 112);
LOCK_OFFSET(haveMask, 113);
LOCK_OFFSET(autoMask, 114);
LOCK_OFFSET(maskRect, 116);
LOCK_OFFSET(maskData, 124);
LOCK_OFFSET(maskRowBytes, 132);
LOCK_OFFSET(backColor, 136);
LOCK_OFFSET(foreColor, 140);
LOCK_OFFSET(hostSig, 144);
LOCK_OFFSET(hostProc, 148);
LOCK_OFFSET(imageMode, 156);
LOCK_OFFSET(imageHRes, 160);
LOCK_OFFSET(imageVRes, 164);
LOCK_OFFSET(floatCoord, 168);
LOCK_OFFSET(wholeSize, 172);
LOCK_OFFSET(monitor, 176);
LOCK_OFFSET(platformData, 216);
LOCK_OFFSET(bufferProcs, 224);
LOCK_OFFSET(resourceProcs, 232);
LOCK_OFFSET(processEvent, 240);
LOCK_OFFSET(displayPixels, 248);
LOCK_OFFSET(handleProcs, 256);
LOCK_OFFSET(supportsDummyChannels, 264);
LOCK_OFFSET(supportsAlternateLayouts, 265);
LOCK_OFFSET(wantLayout, 266);
LOCK_OFFSET(filterCase, 268);
LOCK_OFFSET(dummyPlaneValue, 270);
LOCK_OFFSET(premiereHook, 272);
LOCK_OFFSET(advanceState, 280);
LOCK_OFFSET(supportsAbsolute, 288);
LOCK_OFFSET(wantsAbsolute, 289);
LOCK_OFFSET(getPropertyObsolete, 292);
LOCK_OFFSET(cannotUndo, 300);
LOCK_OFFSET(supportsPadding, 301);
LOCK_OFFSET(inputPadding, 302);
LOCK_OFFSET(outputPadding, 304);
LOCK_OFFSET(maskPadding, 306);
LOCK_OFFSET(samplingSupport, 308);
LOCK_OFFSET(reservedByte, 309);
LOCK_OFFSET(inputRate, 312);
LOCK_OFFSET(maskRate, 316);
LOCK_OFFSET(colorServices, 320);
LOCK_OFFSET(inLayerPlanes, 328);
LOCK_OFFSET(outLayerPlanes, 338);
LOCK_OFFSET(absLayerPlanes, 348);
LOCK_OFFSET(absNonLayerPlanes, 356);
LOCK_OFFSET(inPreDummyPlanes, 358);
LOCK_OFFSET(inPostDummyPlanes, 360);
LOCK_OFFSET(outPreDummyPlanes, 362);
LOCK_OFFSET(outPostDummyPlanes, 364);
LOCK_OFFSET(inColumnBytes, 368);
LOCK_OFFSET(inPlaneBytes, 372);
LOCK_OFFSET(outColumnBytes, 376);
LOCK_OFFSET(outPlaneBytes, 380);
LOCK_OFFSET(imageServicesProcs, 384);
LOCK_OFFSET(propertyProcs, 392);
LOCK_OFFSET(inTileHeight, 400);
LOCK_OFFSET(absTileHeight, 408);
LOCK_OFFSET(outTileHeight, 416);
LOCK_OFFSET(maskTileHeight, 424);
LOCK_OFFSET(maskTileOrigin, 428);
LOCK_OFFSET(descriptorParameters, 432);
LOCK_OFFSET(errorString, 440);
LOCK_OFFSET(channelPortProcs, 448);
LOCK_OFFSET(documentInfo, 456);
LOCK_OFFSET(sSPBasic, 464);
LOCK_OFFSET(plugInRef, 472);
LOCK_OFFSET(depth, 480);
LOCK_OFFSET(iCCprofileData, 484);
LOCK_OFFSET(iCCprofileSize, 492);
LOCK_OFFSET(canUseICCProfiles, 496);
LOCK_OFFSET(reserved, 500);
#undef LOCK_OFFSET
