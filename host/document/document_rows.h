// The document's rows on their way to the filter and back, where 16-bit samples change their scale.
#pragma once

#include "host/document/document.h"
#include "platform/types.h"

// Part of a document: a rectangle inside it and planes lo to hi. The filter has it in rows of `rowBytes`, the
// planes of a pixel together.
struct Area {
    VRect rect;
    int16_t loPlane;
    int16_t hiPlane;
    int32_t rowBytes;
};

// Copies the area of `pixels`, one of the document's blocks, into `rows`.
void DeliverRows(const Document &document, const PixelBlock &pixels, const Area &area, uint8_t *rows);

// Stores what of `rows` lies inside `limits` in the destination. A 16-bit extra sample that comes back as it
// was delivered keeps the file's value: the filter's scale has only half as many.
void StoreRows(Document *document, const Area &area, const VRect &limits, const uint8_t *rows);
