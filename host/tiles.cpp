#include "host/tiles.h"

#include <algorithm>
#include <cstring>

namespace {

// As far as the filter looks to each side at its largest radius.
constexpr int32_t kMargin = 6;
// A band takes as long as several starts of a worker.
constexpr int64_t kMinBandPixels = 1 << 17;
constexpr int32_t kMinBandRows = 8 * kMargin;
// More than one for each worker, so that none waits long for the last.
constexpr int32_t kBandsPerWorker = 3;

struct Span {
    int32_t begin, end;
};

int32_t RoundedUp(int64_t dividend, int64_t divisor) {
    return static_cast<int32_t>((dividend + divisor - 1) / divisor);
}

// At least `parts` spans of about one length, none with its margins longer than `maxLength`.
std::vector<Span> Cut(int32_t begin, int32_t end, int32_t parts, int32_t maxLength) {
    const int32_t length = end - begin;
    if (length > maxLength) {
        parts = std::max(parts, RoundedUp(length, maxLength - 2 * kMargin));
    }
    std::vector<Span> spans;
    spans.reserve(static_cast<size_t>(parts));
    for (int32_t i = 0; i < parts; ++i) {
        spans.push_back({begin + static_cast<int32_t>(int64_t{length} * i / parts),
                         begin + static_cast<int32_t>(int64_t{length} * (i + 1) / parts)});
    }
    return spans;
}

VRect Framed(const VRect &core, const VRect &area) {
    return {std::max(core.top - kMargin, area.top), std::max(core.left - kMargin, area.left),
            std::min(core.bottom + kMargin, area.bottom), std::min(core.right + kMargin, area.right)};
}

bool IsWhole(const Document &document, const Tile &tile) {
    const VRect selected = SelectedRect(document);
    return std::memcmp(&tile.core, &selected, sizeof selected) == 0 &&
           std::max(document.width, document.height) <= kMaxRunSide;
}

// Copies rectangles of one size between blocks whose rows hold `width` pixels.
struct Place {
    uint8_t *block;
    int32_t width;
    int32_t left, top;
};

void CopyPixels(const Place &from, const Place &to, const VRect &size, int64_t pixelBytes) {
    const auto bytes = static_cast<size_t>(WidthOf(size) * pixelBytes);
    for (int64_t y = 0; y < HeightOf(size); ++y) {
        std::memcpy(to.block + ((to.top + y) * to.width + to.left) * pixelBytes,
                    from.block + ((from.top + y) * from.width + from.left) * pixelBytes, bytes);
    }
}

Place PlaceIn(const Document &document, const PixelBlock &block, const VRect &rect) {
    return {block.get(), document.width, rect.left, rect.top};
}

int64_t PixelSize(const Document &document) {
    return int64_t{document.planes} * SampleBytes(document);
}

// The framed tile as a document; false when memory is short.
bool CopyTile(const Document &whole, const VRect &framed, Document *part) {
    part->imageMode = whole.imageMode;
    part->depth = whole.depth;
    part->colorPlanes = whole.colorPlanes;
    part->planes = whole.planes;
    part->width = WidthOf(framed);
    part->height = HeightOf(framed);
    part->horizontalResolution = whole.horizontalResolution;
    part->verticalResolution = whole.verticalResolution;
    part->file = whole.file;
    if (!MapPixels(part)) {
        return false;
    }
    const VRect all = SelectedRect(*part);
    CopyPixels(PlaceIn(whole, whole.source, framed), PlaceIn(*part, part->source, all), framed,
               PixelSize(whole));
    if (whole.mask != nullptr) {
        part->mask = MapBlock(MaskBytes(*part));
        if (part->mask == nullptr) {
            return false;
        }
        CopyPixels(PlaceIn(whole, whole.mask, framed), PlaceIn(*part, part->mask, all), framed, 1);
    }
    return true;
}

int64_t AreaOf(const Tile &tile) {
    return int64_t{WidthOf(tile.core)} * HeightOf(tile.core);
}

}  // namespace

int32_t BandsFor(const Document &document, int32_t jobs) {
    const VRect area = SelectedRect(document);
    const int64_t pixels = int64_t{WidthOf(area)} * HeightOf(area);
    const int64_t worthwhile = std::min<int64_t>(pixels / kMinBandPixels, HeightOf(area) / kMinBandRows);
    return jobs == 1
               ? 1
               : static_cast<int32_t>(std::clamp<int64_t>(worthwhile, 1, int64_t{jobs} * kBandsPerWorker));
}

std::vector<Tile> CutIntoTiles(const VRect &area, const TileLimits &limits) {
    std::vector<Tile> tiles;
    for (const Span &rows : Cut(area.top, area.bottom, limits.bands, limits.maxSide)) {
        for (const Span &columns : Cut(area.left, area.right, 1, limits.maxSide)) {
            const VRect core = {rows.begin, columns.begin, rows.end, columns.end};
            tiles.push_back({core, Framed(core, area)});
        }
    }
    return tiles;
}

FilterOutcome FilterTile(const FilterRequest &request, const Tile &tile) {
    Document *whole = request.document;
    if (IsWhole(*whole, tile)) {
        return RunFilter(request);
    }
    Document part;
    if (!CopyTile(*whole, tile.framed, &part)) {
        return {memFullErr, {}, {}};
    }
    FilterRequest ofPart = request;
    ofPart.document = &part;
    FilterOutcome outcome = RunFilter(ofPart);
    if (outcome.result == noErr) {
        const VRect inPart = {tile.core.top - tile.framed.top, tile.core.left - tile.framed.left, 0, 0};
        CopyPixels(PlaceIn(part, part.destination, inPart), PlaceIn(*whole, whole->destination, tile.core),
                   tile.core, PixelSize(*whole));
    }
    return outcome;
}

FilterOutcome FilterTiles(const FilterRequest &request, const std::vector<Tile> &tiles) {
    ResetDestination(request.document);
    int64_t total = 0;
    for (const Tile &tile : tiles) {
        total += AreaOf(tile);
    }
    FilterOutcome outcome = {};
    int64_t done = 0;
    for (const Tile &tile : tiles) {
        FilterRequest ofTile = request;
        const double from = static_cast<double>(done) / static_cast<double>(total);
        done += AreaOf(tile);
        ofTile.watcher =
            PartOf(request.watcher, from, static_cast<double>(done) / static_cast<double>(total));
        outcome = FilterTile(ofTile, tile);
        if (outcome.result != noErr) {
            break;
        }
    }
    return outcome;
}
