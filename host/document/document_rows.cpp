#include "host/document/document_rows.h"

#include <algorithm>
#include <cstring>

#include "host/document/sample_scale.h"

namespace {

// Samples that are contiguous both in the document's block and in the rows.
struct Stretch {
    int64_t index;   // in samples, from the block's start
    int64_t offset;  // in bytes, from the rows' start
    int64_t count;   // in samples: whole pixels of the planes asked for
};

// Calls visit(stretch) for each row, or for each pixel if only some planes are wanted.
template <typename Visit>
void VisitStretches(const Document &document, const Area &area, Visit visit) {
    const int64_t planes = area.hiPlane - area.loPlane + 1;
    const int64_t width = area.rect.right - area.rect.left;
    const int64_t pixels = planes == document.planes ? width : 1;
    for (int64_t y = area.rect.top; y < area.rect.bottom; ++y) {
        const int64_t row = (y - area.rect.top) * area.rowBytes;
        for (int64_t x = 0; x < width; x += pixels) {
            const int64_t pixel = y * document.width + area.rect.left + x;
            visit(Stretch{pixel * document.planes + area.loPlane, row + x * planes * SampleBytes(document),
                          pixels * planes});
        }
    }
}

void DeliverUnchanged(const Document &document, const uint8_t *pixels, const Area &area, uint8_t *rows) {
    const int64_t bytes = SampleBytes(document);
    VisitStretches(document, area, [&](const Stretch &stretch) {
        std::memcpy(rows + stretch.offset, pixels + stretch.index * bytes,
                    static_cast<size_t>(stretch.count * bytes));
    });
}

void StoreUnchanged(Document *document, const Area &area, const uint8_t *rows) {
    const int64_t bytes = SampleBytes(*document);
    uint8_t *destination = document->destination.get();
    VisitStretches(*document, area, [&](const Stretch &stretch) {
        std::memcpy(destination + stretch.index * bytes, rows + stretch.offset,
                    static_cast<size_t>(stretch.count * bytes));
    });
}

void DeliverScaled(const Document &document, const uint8_t *pixels, const Area &area, uint8_t *rows) {
    VisitStretches(document, area, [&](const Stretch &stretch) {
        const auto *from = reinterpret_cast<const uint16_t *>(pixels) + stretch.index;
        auto *to = reinterpret_cast<uint16_t *>(rows + stretch.offset);
        for (int64_t i = 0; i < stretch.count; ++i) {
            to[i] = FilterSample(from[i]);
        }
    });
}

void StoreScaled(Document *document, const Area &area, const uint8_t *rows) {
    VisitStretches(*document, area, [&](const Stretch &stretch) {
        const auto *original = reinterpret_cast<const uint16_t *>(document->source.get()) + stretch.index;
        auto *to = reinterpret_cast<uint16_t *>(document->destination.get()) + stretch.index;
        const auto *from = reinterpret_cast<const uint16_t *>(rows + stretch.offset);
        int32_t plane = area.loPlane;
        for (int64_t i = 0; i < stretch.count; ++i) {
            const bool kept = plane >= document->colorPlanes && from[i] == FilterSample(original[i]);
            to[i] = kept ? original[i] : FileSample(from[i]);
            plane = plane == area.hiPlane ? area.loPlane : plane + 1;
        }
    });
}

}  // namespace

void DeliverRows(const Document &document, const PixelBlock &pixels, const Area &area, uint8_t *rows) {
    (document.depth == 16 ? DeliverScaled : DeliverUnchanged)(document, pixels.get(), area, rows);
}

void StoreRows(Document *document, const Area &area, const VRect &limits, const uint8_t *rows) {
    const VRect &rect = area.rect;
    Area stored = area;
    stored.rect = {std::max(rect.top, limits.top), std::max(rect.left, limits.left),
                   std::min(rect.bottom, limits.bottom), std::min(rect.right, limits.right)};
    if (WidthOf(stored.rect) <= 0 || HeightOf(stored.rect) <= 0) {
        return;
    }
    const int64_t pixelBytes = int64_t{area.hiPlane - area.loPlane + 1} * SampleBytes(*document);
    rows += int64_t{stored.rect.top - rect.top} * area.rowBytes + (stored.rect.left - rect.left) * pixelBytes;
    (document->depth == 16 ? StoreScaled : StoreUnchanged)(document, stored, rows);
}
