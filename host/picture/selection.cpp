#include "host/picture/selection.h"

#include <charconv>

#include "host/document/blend.h"
#include "host/picture/picture.h"
#include "host/picture/picture_mode.h"
#include "photoshop/image_modes.h"

namespace {

constexpr uint32_t kSelected = 255;
constexpr uint32_t kFileSamplesPerByte = 257;  // 65535 / 255

bool IsSize(int64_t length) {
    return length > 0 && length <= VIPS_MAX_COORD;
}

bool LiesInside(const VRect &rect, const Document &document) {
    return rect.left >= 0 && rect.top >= 0 && rect.right <= document.width && rect.bottom <= document.height;
}

// The mask's samples, as bytes.
void CopyMask(const Document &mask, uint8_t *bytes) {
    const int64_t count = MaskBytes(mask);
    if (mask.depth == 8) {
        std::copy_n(mask.source.get(), count, bytes);
        return;
    }
    const auto *samples = reinterpret_cast<const uint16_t *>(mask.source.get());
    for (int64_t i = 0; i < count; ++i) {
        bytes[i] = static_cast<uint8_t>((samples[i] + kFileSamplesPerByte / 2) / kFileSamplesPerByte);
    }
}

MaybeFailure ReadMask(const std::string &maskFile, const std::string &file, Sharing sharing,
                      const Watcher &watcher, Document *document) {
    Picture mask;
    if (MaybeFailure failure = OpenPicture(maskFile, &mask)) {
        return failure;
    }
    const Document &grey = mask.document;
    if (grey.planes != 1 || grey.depth > 16) {
        return FileFailure(maskFile,
                           "a mask must be grey, of 8 or 16 bits and without further channels, and "
                           "this picture is " +
                               DescribePicture(mask));
    }
    if (grey.width != document->width || grey.height != document->height) {
        return FileFailure(maskFile,
                           "the mask is " + SizeOf(grey) + ", and " + file + " is " + SizeOf(*document));
    }
    if (MaybeFailure failure = ReadPixels(&mask, watcher)) {
        return failure;
    }
    document->mask = MapBlock(MaskBytes(*document), sharing);
    if (document->mask == nullptr) {
        return TooLittleMemory(maskFile);
    }
    CopyMask(grey, document->mask.get());
    return std::nullopt;
}

template <typename Sample>
void BlendSamples(int32_t top, int32_t bottom, Document *document) {
    const int64_t offset = top * RowBytes(*document);
    const auto *source = reinterpret_cast<const Sample *>(document->source.get() + offset);
    auto *destination = reinterpret_cast<Sample *>(document->destination.get() + offset);
    const int64_t width = document->width;
    for (int64_t pixel = top * width; pixel < bottom * width; ++pixel) {
        const uint8_t selected = document->mask[static_cast<size_t>(pixel)];
        for (int32_t plane = 0; plane < document->planes; ++plane, ++source, ++destination) {
            *destination = Blend(*destination, *source, selected, kSelected);
        }
    }
}

}  // namespace

std::optional<VRect> ParseRect(const std::string &text) {
    int32_t numbers[4] = {};
    const char *place = text.data();
    const char *end = place + text.size();
    for (int i = 0; i < 4; ++i) {
        if (i > 0 && (place == end || *place++ != ',')) {
            return std::nullopt;
        }
        const auto [rest, error] = std::from_chars(place, end, numbers[i]);
        if (error != std::errc()) {
            return std::nullopt;
        }
        place = rest;
    }
    const auto [left, top, width, height] = numbers;
    const int64_t right = int64_t{left} + width;
    const int64_t bottom = int64_t{top} + height;
    if (place != end || !IsSize(width) || !IsSize(height) || right > VIPS_MAX_COORD ||
        bottom > VIPS_MAX_COORD) {
        return std::nullopt;
    }
    return VRect{top, left, static_cast<int32_t>(bottom), static_cast<int32_t>(right)};
}

MaybeFailure Select(const Selection &selection, const std::string &file, Sharing sharing,
                    const Watcher &watcher, Document *document) {
    if (selection.rect && !LiesInside(*selection.rect, *document)) {
        return Failure{kExitUsage,
                       file + ": the rectangle of --select does not lie inside the picture, which is " +
                           SizeOf(*document) + "."};
    }
    document->selection = selection.rect;
    return selection.maskFile.empty() ? std::nullopt
                                      : ReadMask(selection.maskFile, file, sharing, watcher, document);
}

void BlendByMask(int32_t top, int32_t bottom, Document *document) {
    if (document->mask != nullptr) {
        (document->depth == 8    ? BlendSamples<uint8_t>
         : document->depth == 16 ? BlendSamples<uint16_t>
                                 : BlendSamples<float>)(top, bottom, document);
    }
}
