#include "host/picture/picture_samples.h"

#include <cstring>

#include "host/picture/picture_mode.h"

namespace {

template <typename Sample>
void Flip(const uint16_t *flips, const Document &document, uint8_t *row) {
    auto *samples = reinterpret_cast<Sample *>(row);
    for (int64_t x = 0; x < document.width; ++x) {
        for (int32_t plane = 0; plane < document.colorPlanes; ++plane) {
            Sample &sample = samples[x * document.planes + plane];
            sample = static_cast<Sample>(sample ^ flips[plane]);
        }
    }
}

}  // namespace

void TakeSamples(const void *row, const Document &document, uint8_t *samples) {
    std::memcpy(samples, row, static_cast<size_t>(RowBytes(document)));
    const PictureMode &mode = ModeOfDocument(document.imageMode);
    // Every mode that has flips flips the last colour plane.
    if (mode.flips[document.colorPlanes - 1] != 0) {
        (document.depth == 8 ? Flip<uint8_t> : Flip<uint16_t>)(mode.flips, document, samples);
    }
}
