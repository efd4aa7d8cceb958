#include "host/filter/tiles.h"
#include "hybridmedian/public.h"

#include <algorithm>
#include <cstring>

namespace {

// In pixels: how far the filter looks to each side at its largest radius.
constexpr int32_t kMargin = kMaxRadius;
// A band of this size takes about 8 ms at radius 4 and 18 ms at radius 6; a worker takes about 25 ms to
// start, so smaller bands would not be worth one.
constexpr int64_t kMinBandPixels = 1 << 17;
// Margins then add at most a quarter to a band's rows.
constexpr int32_t kMinBandRows = 8 * kMargin;
// More than one, so that no worker waits long for the last band.
constexpr int32_t kBandsPerWorker = 3;

struct Span {
    int32_t begin, end;
};

int32_t RoundedUp(int64_t dividend, int64_t divisor) {
    return static_cast<int32_t>((dividend + divisor - 1) / divisor);
}

// At least `parts` spans of nearly equal length; none is longer than `maxLength` with its margins.
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

FilterOutcome RunTile(const FilterRequest &request, const Tile &tile) {
    FilterRequest ofTile = request;
    if (!IsWhole(*request.document, tile)) {
        ofTile.tile = tile;
    }
    return RunFilter(ofTile);
}

FilterOutcome RunTiles(const FilterRequest &request, const std::vector<Tile> &tiles) {
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
        outcome = RunTile(ofTile, tile);
        if (outcome.result != noErr) {
            ResetDestination(request.document, SelectedRect(*request.document));
            break;
        }
    }
    return outcome;
}
