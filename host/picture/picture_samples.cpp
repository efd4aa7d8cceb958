#include "host/picture/picture_samples.h"

#include <cstring>

#include "host/picture/picture_mode.h"

namespace {

constexpr int32_t kPackedLabBytes = 4;  // per pixel
constexpr int32_t kLabPlanes = 3;

int64_t SamplesOfRow(const Document &document) {
    return int64_t{document.width} * document.planes;
}

void TakeAsInFile(const void *row, const Document &document, uint8_t *samples) {
    std::memcpy(samples, row, static_cast<size_t>(RowBytes(document)));
}

void TakePackedLab(const void *row, const Document &document, uint8_t *samples) {
    const auto *packed = static_cast<const uint8_t *>(row);
    for (int64_t x = 0; x < document.width; ++x) {
        std::memcpy(samples + x * kLabPlanes, packed + x * kPackedLabBytes, kLabPlanes);
    }
}

// When the library widens 8 bits to 16, a lightness l becomes l * 257 / 2, a and b go to the upper byte, and
// extra channels to both bytes.
void TakeSignedLabFrom8(const void *row, const Document &document, uint8_t *samples) {
    constexpr int kShifts[] = {7, 8, 8};
    const auto *wide = static_cast<const uint16_t *>(row);
    for (int64_t i = 0; i < SamplesOfRow(document); ++i) {
        const int64_t plane = i % document.planes;
        samples[i] = static_cast<uint8_t>(wide[i] >> (plane < kLabPlanes ? kShifts[plane] : 0));
    }
}

// Maps lightness 0..32767 to 0..65535, so that halving it gives the same number again.
void TakeSignedLabFrom16(const void *row, const Document &document, uint8_t *samples) {
    const auto *signedSamples = static_cast<const uint16_t *>(row);
    auto *kept = reinterpret_cast<uint16_t *>(samples);
    for (int64_t i = 0; i < SamplesOfRow(document); ++i) {
        const uint16_t sample = signedSamples[i];
        kept[i] = i % document.planes == 0 ? static_cast<uint16_t>(2 * sample + sample / 16384) : sample;
    }
}

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

SampleForm FormOf(const VipsImage *image, int32_t depth) {
    if (image->Coding == VIPS_CODING_LABQ) {
        return SampleForm::packedLab;
    }
    if (image->Type != VIPS_INTERPRETATION_LABS) {
        return SampleForm::asInFile;
    }
    return depth == 8 ? SampleForm::signedLabFrom8 : SampleForm::signedLabFrom16;
}

int32_t PlanesOf(VipsImage *image) {
    return image->Coding == VIPS_CODING_LABQ ? kLabPlanes : vips_image_get_bands(image);
}

void TakeSamples(SampleForm form, const void *row, const Document &document, uint8_t *samples) {
    static constexpr void (*kTake[])(const void *, const Document &, uint8_t *) = {
        TakeAsInFile, TakePackedLab, TakeSignedLabFrom8, TakeSignedLabFrom16};
    kTake[static_cast<int>(form)](row, document, samples);
    const PictureMode &mode = ModeOfDocument(document.imageMode);
    // Every mode that has flips flips the last colour plane.
    if (mode.flips[document.colorPlanes - 1] != 0) {
        (document.depth == 8 ? Flip<uint8_t> : Flip<uint16_t>)(mode.flips, document, samples);
    }
}
