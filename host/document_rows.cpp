#include "host/document_rows.h"

#include <cstring>

#include "host/sample_scale.h"

namespace {

template <typename Sample>
Sample Load(const uint8_t *samples, int64_t index) {
    Sample sample;
    std::memcpy(&sample, samples + index * int64_t{sizeof(Sample)}, sizeof sample);
    return sample;
}

template <typename Sample>
void Put(uint8_t *samples, int64_t index, Sample sample) {
    std::memcpy(samples + index * int64_t{sizeof(Sample)}, &sample, sizeof sample);
}

// Calls visit(index in the document's block, sample in the rows, whether it is a colour sample).
template <typename Visit>
void VisitSamples(const Document &document, const Area &area, int32_t sampleBytes, Visit visit) {
    const int32_t planes = area.hiPlane - area.loPlane + 1;
    for (int64_t y = area.rect.top; y < area.rect.bottom; ++y) {
        const int64_t row = (y - area.rect.top) * area.rowBytes;
        for (int64_t x = area.rect.left; x < area.rect.right; ++x) {
            const int64_t pixel = (y * document.width + x) * document.planes + area.loPlane;
            const int64_t inRow = row + (x - area.rect.left) * planes * sampleBytes;
            for (int32_t p = 0; p < planes; ++p) {
                visit(pixel + p, inRow + int64_t{p} * sampleBytes, area.loPlane + p < document.colorPlanes);
            }
        }
    }
}

template <typename Sample>
Sample Delivered(Sample sample) {
    return sample;
}

template <>
uint16_t Delivered<uint16_t>(uint16_t sample) {
    return FilterSample(sample);
}

template <typename Sample>
Sample Returned(Sample sample, Sample, bool) {
    return sample;
}

template <>
uint16_t Returned<uint16_t>(uint16_t sample, uint16_t original, bool color) {
    return !color && sample == FilterSample(original) ? original : FileSample(sample);
}

template <typename Sample>
void Deliver(const Document &document, const uint8_t *pixels, const Area &area, uint8_t *rows) {
    VisitSamples(document, area, sizeof(Sample), [&](int64_t index, int64_t offset, bool) {
        Put(rows + offset, 0, Delivered(Load<Sample>(pixels, index)));
    });
}

template <typename Sample>
void Store(Document *document, const Area &area, const uint8_t *rows) {
    const uint8_t *source = document->source.get();
    uint8_t *destination = document->destination.get();
    VisitSamples(*document, area, sizeof(Sample), [&](int64_t index, int64_t offset, bool color) {
        Put(destination, index, Returned(Load<Sample>(rows + offset, 0), Load<Sample>(source, index), color));
    });
}

struct RowCalls {
    void (*deliver)(const Document &document, const uint8_t *pixels, const Area &area, uint8_t *rows);
    void (*store)(Document *document, const Area &area, const uint8_t *rows);
};

template <typename Sample>
constexpr RowCalls kCalls = {Deliver<Sample>, Store<Sample>};

const RowCalls &CallsFor(const Document &document) {
    const int32_t bytes = SampleBytes(document);
    return bytes == 1 ? kCalls<uint8_t> : bytes == 2 ? kCalls<uint16_t> : kCalls<float>;
}

}  // namespace

void DeliverRows(const Document &document, const PixelBlock &pixels, const Area &area, uint8_t *rows) {
    CallsFor(document).deliver(document, pixels.get(), area, rows);
}

void StoreRows(Document *document, const Area &area, const uint8_t *rows) {
    CallsFor(*document).store(document, area, rows);
}
