#include "host/filter/tiles.h"

#include <algorithm>
#include <cstring>

#include "host/document/original_pixels.h"
#include "hybridmedian/public.h"

namespace {

struct Span {
    int32_t begin, end;
};

int32_t RoundedUp(int64_t dividend, int64_t divisor) {
    return static_cast<int32_t>((dividend + divisor - 1) / divisor);
}

Span WithMargins(const Span &core, const Span &area) {
    return {std::max(core.begin - kFrameMargin, area.begin), std::min(core.end + kFrameMargin, area.end)};
}

// Spans of nearly equal length, none longer than `maxLength` with its margins.
std::vector<Span> Cut(const Span &core, const Span &area, int32_t maxLength) {
    const Span framed = WithMargins(core, area);
    const int32_t length = core.end - core.begin;
    const int32_t parts =
        framed.end - framed.begin > maxLength ? RoundedUp(length, maxLength - 2 * kFrameMargin) : 1;
    std::vector<Span> spans;
    spans.reserve(static_cast<size_t>(parts));
    for (int32_t i = 0; i < parts; ++i) {
        spans.push_back({core.begin + static_cast<int32_t>(int64_t{length} * i / parts),
                         core.begin + static_cast<int32_t>(int64_t{length} * (i + 1) / parts)});
    }
    return spans;
}

bool IsWhole(const Document &document, const Tile &tile) {
    const VRect selected = SelectedRect(document);
    return std::memcmp(&tile.core, &selected, sizeof selected) == 0 &&
           std::max(document.width, document.height) <= kMaxRunSide;
}

int64_t AreaOf(const Tile &tile) {
    return int64_t{WidthOf(tile.core)} * HeightOf(tile.core);
}

// How far the filter has looked, as it has recorded itself; if it has not, as far as it can.
int32_t RadiusOf(const Action &recorded) {
    const ActionItem *item = FindItem(recorded, kRadiusKey);
    return item == nullptr ? kMaxRadius : static_cast<int32_t>(ClampRadius(static_cast<float>(item->number)));
}

}  // namespace

std::vector<Tile> CutIntoTiles(const VRect &core, const VRect &area, int32_t maxSide) {
    const Span areaRows = {area.top, area.bottom};
    const Span areaColumns = {area.left, area.right};
    std::vector<Tile> tiles;
    for (const Span &rows : Cut({core.top, core.bottom}, areaRows, maxSide)) {
        for (const Span &columns : Cut({core.left, core.right}, areaColumns, maxSide)) {
            const auto [top, bottom] = WithMargins(rows, areaRows);
            const auto [left, right] = WithMargins(columns, areaColumns);
            tiles.push_back({{rows.begin, columns.begin, rows.end, columns.end}, {top, left, bottom, right}});
        }
    }
    return tiles;
}

FilterOutcome RunTile(const FilterRequest &request, const Tile &tile) {
    FilterRequest ofTile = request;
    if (!IsWhole(*request.document, tile)) {
        ofTile.tile = tile;
    }
    FilterOutcome outcome = RunFilter(ofTile);
    const FilteredPart part = {tile.core, ofTile.tile ? tile.framed : tile.core, RadiusOf(outcome.recorded)};
    if (outcome.result == noErr && !RestoreOriginals(part, request.watcher.cancelled, request.document)) {
        ResetDestination(request.document, tile.core);
        outcome.result = userCanceledErr;
    }
    return outcome;
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
