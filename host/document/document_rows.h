// The document's rows on their way to the filter and back; 16-bit samples and floats change their scale on
// the way.
#pragma once

#include "host/document/document.h"
#include "platform/types.h"

// Part of what the filter is shown of a document: a rectangle inside it, and planes lo to hi. The filter gets
// it in rows of `rowBytes`, with the planes of a pixel together.
struct Area {
    VRect rect;
    int16_t loPlane;
    int16_t hiPlane;
    int32_t rowBytes;
};

// Copies the area of `pixels`, one of the document's blocks, into `rows`. Where a colour is not all finite,
// the nearest one of the selected row that is stands in for it.
void DeliverRows(const Document &document, const PixelBlock &pixels, const Area &area, uint8_t *rows);

// Stores the part of `rows` that lies inside `limits` in the destination. A sample of transparency that comes
// back as it was delivered keeps the file's value, since the filter's scale has fewer values.
void StoreRows(Document *document, const Area &area, const VRect &limits, const uint8_t *rows);

// What the filter takes for white, whatever its colours are. `pixel` points into one of the blocks.
bool IsTransparent(const Document &document, const uint8_t *pixel);
// Always true if the document has no floats.
bool HasFiniteColors(const Document &document, const uint8_t *pixel);
