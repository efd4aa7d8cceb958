#include "host/document/document_rows.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <vector>

#include "host/document/sample_scale.h"

namespace {

// Samples that are contiguous both in the document's block and in the rows.
struct Stretch {
    int64_t index;   // in samples, from the block's start
    int64_t offset;  // in bytes, from the rows' start
    int64_t count;   // in samples
};

int64_t ShownBytes(const Document &document) {
    return ShownDepth(document) / 8;
}

int64_t PixelSize(const Document &document) {
    return int64_t{document.planes} * SampleBytes(document);
}

// Calls visit(stretch) for each row or, if only some planes are wanted, for each pixel's colours and for its
// transparency.
template <typename Visit>
void VisitStretches(const Document &document, const Area &area, Visit visit) {
    const int64_t planes = area.hiPlane - area.loPlane + 1;
    const int64_t width = WidthOf(area.rect);
    const bool whole = planes == document.planes;
    const int64_t pixels = whole ? width : 1;
    const int64_t joined =
        whole ? planes : std::min<int64_t>(area.hiPlane + 1, document.colorPlanes) - area.loPlane;
    for (int64_t y = area.rect.top; y < area.rect.bottom; ++y) {
        const int64_t row = (y - area.rect.top) * area.rowBytes;
        for (int64_t x = 0; x < width; x += pixels) {
            const int64_t pixel = (y * document.width + area.rect.left + x) * document.planes;
            const int64_t offset = row + x * planes * ShownBytes(document);
            if (joined > 0) {
                visit(Stretch{pixel + area.loPlane, offset, pixels * joined});
            }
            if (joined < planes) {
                visit(
                    Stretch{pixel + document.transparency, offset + (planes - 1) * ShownBytes(document), 1});
            }
        }
    }
}

// A sample of transparency that comes back as it was delivered keeps the file's value.
template <typename Sample, typename ToFilter, typename ToFile>
void StoreScaledSamples(Document *document, const Area &area, const uint8_t *rows, ToFilter toFilter,
                        ToFile toFile) {
    VisitStretches(*document, area, [&](const Stretch &stretch) {
        const auto *original = reinterpret_cast<const Sample *>(document->source.get()) + stretch.index;
        auto *to = reinterpret_cast<Sample *>(document->destination.get()) + stretch.index;
        const auto *from = reinterpret_cast<const uint16_t *>(rows + stretch.offset);
        if (document->transparency == 0) {
            std::transform(from, from + stretch.count, to,
                           [&](uint16_t sample) { return toFile(sample, true); });
            return;
        }
        int64_t plane = stretch.index % document->planes;
        for (int64_t i = 0; i < stretch.count; ++i) {
            const bool color = plane < document->colorPlanes;
            to[i] = !color && from[i] == toFilter(original[i]) ? original[i] : toFile(from[i], color);
            plane = plane + 1 == document->planes ? 0 : plane + 1;
        }
    });
}

void DeliverUnchanged(const Document &document, const uint8_t *pixels, const Area &area, uint8_t *rows) {
    VisitStretches(document, area, [&](const Stretch &stretch) {
        std::memcpy(rows + stretch.offset, pixels + stretch.index, static_cast<size_t>(stretch.count));
    });
}

void StoreUnchanged(Document *document, const Area &area, const uint8_t *rows) {
    uint8_t *destination = document->destination.get();
    VisitStretches(*document, area, [&](const Stretch &stretch) {
        std::memcpy(destination + stretch.index, rows + stretch.offset, static_cast<size_t>(stretch.count));
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
    StoreScaledSamples<uint16_t>(
        document, area, rows, [](uint16_t sample) { return FilterSample(sample); },
        [](uint16_t sample, bool) { return FileSample(sample); });
}

// For each column from `left` to `right`, the column whose colours are shown there. `row` is a row of the
// document.
std::vector<int32_t> ShownColumns(const Document &document, const uint8_t *row, int32_t left, int32_t right) {
    const VRect selected = SelectedRect(document);
    const auto finite = [&](int32_t x) { return HasFiniteColors(document, row + x * PixelSize(document)); };
    std::vector<int32_t> columns;
    columns.reserve(static_cast<size_t>(right - left));
    int32_t before = left;
    while (before >= selected.left && !finite(before)) {
        --before;
    }
    int32_t after = left;
    for (int32_t x = left; x < right; ++x) {
        before = finite(x) ? x : before;
        after = std::max(after, x);
        while (after < selected.right && !finite(after)) {
            ++after;
        }
        const bool isLeft = before >= selected.left && (after == selected.right || x - before <= after - x);
        columns.push_back(isLeft ? before : after < selected.right ? after : x);
    }
    return columns;
}

void DeliverFloats(const Document &document, const uint8_t *pixels, const Area &area, uint8_t *rows) {
    const VRect &rect = area.rect;
    for (int64_t y = rect.top; y < rect.bottom; ++y, rows += area.rowBytes) {
        const uint8_t *row = pixels + y * RowBytes(document);
        const auto *samples = reinterpret_cast<const float *>(row);
        auto *to = reinterpret_cast<uint16_t *>(rows);
        const std::vector<int32_t> columns = ShownColumns(document, row, rect.left, rect.right);
        for (int64_t x = rect.left; x < rect.right; ++x) {
            const int64_t colors = int64_t{columns[static_cast<size_t>(x - rect.left)]} * document.planes;
            for (int32_t plane = area.loPlane; plane <= area.hiPlane; ++plane) {
                *to++ = plane < document.colorPlanes
                            ? FilterSample(samples[colors + plane], document.range)
                            : FilterOpacity(samples[x * document.planes + document.transparency]);
            }
        }
    }
}

void StoreFloats(Document *document, const Area &area, const uint8_t *rows) {
    StoreScaledSamples<float>(document, area, rows, FilterOpacity, [&](uint16_t sample, bool color) {
        return FileSample(sample, color ? document->range : SampleRange{});
    });
}

}  // namespace

void DeliverRows(const Document &document, const PixelBlock &pixels, const Area &area, uint8_t *rows) {
    (document.depth == 8    ? DeliverUnchanged
     : document.depth == 16 ? DeliverScaled
                            : DeliverFloats)(document, pixels.get(), area, rows);
}

void StoreRows(Document *document, const Area &area, const VRect &limits, const uint8_t *rows) {
    const VRect &rect = area.rect;
    Area stored = area;
    stored.rect = {std::max(rect.top, limits.top), std::max(rect.left, limits.left),
                   std::min(rect.bottom, limits.bottom), std::min(rect.right, limits.right)};
    if (WidthOf(stored.rect) <= 0 || HeightOf(stored.rect) <= 0) {
        return;
    }
    const int64_t pixelBytes = (area.hiPlane - area.loPlane + 1) * ShownBytes(*document);
    rows += int64_t{stored.rect.top - rect.top} * area.rowBytes + (stored.rect.left - rect.left) * pixelBytes;
    (document->depth == 8    ? StoreUnchanged
     : document->depth == 16 ? StoreScaled
                             : StoreFloats)(document, stored, rows);
}

bool IsTransparent(const Document &document, const uint8_t *pixel) {
    if (document.transparency == 0) {
        return false;
    }
    // No opacity but 0 and, with floats, one below it is shown as 0.
    const auto offset = static_cast<int64_t>(document.transparency) * SampleBytes(document);
    const uint8_t *place = pixel + offset;
    if (document.depth == 32) {
        return FilterOpacity(*reinterpret_cast<const float *>(place)) == 0;
    }
    return std::all_of(place, place + SampleBytes(document), [](uint8_t byte) { return byte == 0; });
}

bool HasFiniteColors(const Document &document, const uint8_t *pixel) {
    const auto *samples = reinterpret_cast<const float *>(pixel);
    return document.depth != 32 || std::all_of(samples, samples + document.colorPlanes,
                                               [](float sample) { return std::isfinite(sample); });
}
