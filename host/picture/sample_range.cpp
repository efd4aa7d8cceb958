#include "host/picture/sample_range.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "host/picture/picture.h"

namespace {

constexpr int32_t kStripRows = 64;
constexpr float kInfinity = std::numeric_limits<float>::infinity();

void Widen(const Document &document, const float *row, SampleRange *range) {
    for (int64_t x = 0; x < document.width; ++x, row += document.planes) {
        for (int32_t plane = 0; plane < document.colorPlanes; ++plane) {
            if (std::isfinite(row[plane])) {
                range->least = std::min(range->least, row[plane]);
                range->greatest = std::max(range->greatest, row[plane]);
            }
        }
    }
}

}  // namespace

std::optional<SampleRange> ParseRange(const std::string &text) {
    SampleRange range;
    const char *end = text.data() + text.size();
    const auto [comma, error] = std::from_chars(text.data(), end, range.least);
    if (error != std::errc() || comma == end || *comma != ',') {
        return std::nullopt;
    }
    const auto [rest, second] = std::from_chars(comma + 1, end, range.greatest);
    const bool sound = second == std::errc() && rest == end && std::isfinite(range.least) &&
                       std::isfinite(range.greatest) && range.least < range.greatest;
    return sound ? std::optional(range) : std::nullopt;
}

MaybeFailure ChooseRange(const std::optional<SampleRange> &range, const std::string &file,
                         const Watcher &watcher, Document *document) {
    if (document->depth != 32 || range) {
        document->range = range.value_or(document->range);
        return std::nullopt;
    }
    Picture picture;
    if (MaybeFailure failure = OpenPicture(file, &picture)) {
        return failure;
    }
    const OwnedObject<VipsRegion> region(vips_region_new(picture.unread.get()));
    SampleRange found = {kInfinity, -kInfinity};
    for (int32_t y = 0; y < document->height; y += kStripRows) {
        if (watcher.cancelled()) {
            return Interruption(file);
        }
        const VipsRect strip = {0, y, document->width, std::min(kStripRows, document->height - y)};
        if (vips_region_prepare(region.get(), &strip) != 0) {
            return FileFailure(file, "cannot be read: " + TakeVipsError());
        }
        const uint8_t *row = region->data + (y - region->valid.top) * int64_t{region->bpl};
        for (int32_t i = 0; i < strip.height; ++i, row += region->bpl) {
            Widen(*document, reinterpret_cast<const float *>(row), &found);
        }
    }
    // One value alone, or none at all, cannot be told apart from others anyway.
    document->range = found.least < found.greatest ? found : SampleRange{};
    return std::nullopt;
}
