#include "host/document/original_pixels.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <vector>

#include "colors/color_modes.h"
#include "host/document/document_rows.h"

namespace {

// Colours are compared by hashes first, several pixels at a time.
constexpr size_t kLanes = 16;
constexpr size_t kVectors = 4;  // so many are independent of each other
constexpr size_t kBlock = kVectors * kLanes;
using Lanes = int16_t __attribute__((vector_size(kLanes * sizeof(int16_t))));

struct Place {
    int32_t dy, dx;
};

// The filter looks along lines through the pixel: straight, diagonal, and at slopes of about a half.
bool IsLookedAt(int32_t dy, int32_t dx) {
    const int32_t longer = std::max(std::abs(dy), std::abs(dx));
    const int32_t shorter = std::min(std::abs(dy), std::abs(dx));
    return shorter == 0 || shorter == longer || shorter == (longer + 1) / 2;
}

// The nearest first.
std::vector<Place> PlacesWithin(int32_t radius) {
    std::vector<Place> places;
    for (int32_t dy = -radius; dy <= radius; ++dy) {
        for (int32_t dx = -radius; dx <= radius; ++dx) {
            if (IsLookedAt(dy, dx)) {
                places.push_back({dy, dx});
            }
        }
    }
    std::stable_sort(places.begin(), places.end(), [](const Place &a, const Place &b) {
        return a.dy * a.dy + a.dx * a.dx < b.dy * b.dy + b.dx * b.dx;
    });
    return places;
}

// A row of colours as they come out of the filter if it leaves them alone, with a hash each.
template <size_t Planes>
struct ColorRow {
    std::vector<std::array<uint16_t, Planes>> colors;
    std::vector<uint16_t> hashes;
    bool setApart = false;  // whether it holds colours that are the document's own business
};

// Planes are a colour's; Sample is the document's.
template <typename Sample, size_t Planes>
struct Restorer {
    const FilteredPart *part;
    Document *document;
    std::vector<Place> places;
    std::vector<ColorRow<Planes>> originals;  // a ring of rows; row y is at y modulo their number
    int32_t nextRow;                          // the first one that has not been added yet
    ColorRow<Planes> results;
    // For each result, how many places there are from the nearest one with its hash to the last one.
    std::vector<int16_t> nearest;
    std::vector<uint8_t> delivered;  // a row of bytes
};

bool LosesBits(const Document &document) {
    return document.depth != 8 || ConversionOf(document.imageMode, 1) != nullptr;
}

// Transparent or not finite: the document's own business, and no result of the filter.
bool IsSetApart(const Document &document, const uint8_t *pixel) {
    return IsTransparent(document, pixel) || !HasFiniteColors(document, pixel);
}

uint8_t *RowAt(const Document &document, const PixelBlock &block, int32_t y) {
    return block.get() + y * RowBytes(document);
}

// Fills in columns `left` to `right` of a row of the block, from place `first` of `row` on.
template <typename Sample, size_t Planes>
void FillColors(const PixelBlock &block, int32_t y, int32_t left, int32_t right,
                const ModeConversion *conversion, size_t first, Restorer<Sample, Planes> *restorer,
                ColorRow<Planes> *row) {
    const Document &document = *restorer->document;
    const int32_t rowBytes = (right - left) * int32_t{Planes} * ShownDepth(document) / 8;
    uint16_t *samples = row->colors[first].data();
    uint8_t *delivered =
        document.depth == 8 ? restorer->delivered.data() : reinterpret_cast<uint8_t *>(samples);
    DeliverRows(document, block, {{y, left, y + 1, right}, 0, int16_t{Planes - 1}, rowBytes}, delivered);
    if (conversion != nullptr) {
        conversion->toRGB(delivered, right - left);
        conversion->fromRGB(delivered, right - left);
    }
    if (document.depth == 8) {
        std::copy_n(delivered, rowBytes, samples);
    }
}

// Equal colours have equal hashes.
template <size_t Planes>
void FillHashes(ColorRow<Planes> *row) {
    uint16_t *hash = row->hashes.data();
    for (const auto &color : row->colors) {
        uint16_t mixed = color[0];
        for (size_t plane = 1; plane < Planes; ++plane) {
            mixed = static_cast<uint16_t>(std::rotl(mixed, 5) ^ color[plane]);
        }
        *hash++ = mixed;
    }
}

// Adds a row around the core, with `radius` more pixels at both ends; those beyond what the filter was shown
// repeat the pixel at its edge.
template <typename Sample, size_t Planes>
void AddOriginals(int32_t y, Restorer<Sample, Planes> *restorer) {
    const auto &[core, shown, radius] = *restorer->part;
    const Document &document = *restorer->document;
    ColorRow<Planes> *row = &restorer->originals[static_cast<size_t>(y) % restorer->originals.size()];
    const int32_t left = std::max(core.left - radius, shown.left);
    const int32_t right = std::min(core.right + radius, shown.right);
    const auto first = static_cast<size_t>(left - (core.left - radius));
    const size_t end = first + static_cast<size_t>(right - left);
    FillColors(document.source, y, left, right, ConversionOf(document.imageMode, SampleBytes(document)),
               first, restorer, row);
    std::fill_n(row->colors.begin(), first, row->colors[first]);
    std::fill(row->colors.begin() + static_cast<ptrdiff_t>(end), row->colors.end(), row->colors[end - 1]);
    FillHashes(row);
    const int64_t pixelBytes = document.planes * int64_t{sizeof(Sample)};
    const uint8_t *source = RowAt(document, document.source, y);
    row->setApart = false;
    for (int32_t x = left; (document.transparency != 0 || document.depth == 32) && x < right; ++x) {
        row->setApart |= IsSetApart(document, source + x * pixelBytes);
    }
}

template <typename Sample, size_t Planes>
Restorer<Sample, Planes> MakeRestorer(const FilteredPart &part, Document *document) {
    const auto width = static_cast<size_t>(WidthOf(part.core));
    const auto radius = static_cast<size_t>(part.radius);
    const auto rowOf = [](size_t pixels) {
        // The last block may reach beyond the last pixel.
        return ColorRow<Planes>{std::vector<std::array<uint16_t, Planes>>(pixels),
                                std::vector<uint16_t>(pixels + kBlock)};
    };
    return {&part,
            document,
            PlacesWithin(part.radius),
            std::vector<ColorRow<Planes>>(2 * radius + 1, rowOf(width + 2 * radius)),
            std::max(part.core.top - part.radius, part.shown.top),
            rowOf(width),
            std::vector<int16_t>(width + kBlock),
            std::vector<uint8_t>((width + 2 * radius) * Planes)};
}

// Where the originals of a place are, as seen from the first pixel of the row in work.
template <size_t Planes>
struct PlaceRow {
    const uint16_t *hashes;
    const std::array<uint16_t, Planes> *colors;
    const uint8_t *row;  // of the source
    int32_t dx;
    bool setApart;
};

template <typename Sample, size_t Planes>
std::vector<PlaceRow<Planes>> PlaceRowsAround(int32_t y, const Restorer<Sample, Planes> &restorer) {
    const auto &[core, shown, radius] = *restorer.part;
    std::vector<PlaceRow<Planes>> rows;
    rows.reserve(restorer.places.size());
    for (const Place &place : restorer.places) {
        const int32_t placeY = std::clamp(y + place.dy, shown.top, shown.bottom - 1);
        const ColorRow<Planes> &row =
            restorer.originals[static_cast<size_t>(placeY) % restorer.originals.size()];
        const int32_t column = radius + place.dx;
        rows.push_back({row.hashes.data() + column, row.colors.data() + column,
                        RowAt(*restorer.document, restorer.document->source, placeY), place.dx,
                        row.setApart});
    }
    return rows;
}

// What FindNearest does with `count` hashes, compiled for what the processor has.
__attribute__((always_inline)) inline void FillNearest(const uint16_t *hashes, size_t count,
                                                       const uint16_t *const *places, size_t placeCount,
                                                       int16_t *nearest) {
    for (size_t x = 0; x < count; x += kBlock) {
        Lanes results[kVectors];
        Lanes found[kVectors] = {};
        std::memcpy(results, hashes + x, sizeof results);
        for (size_t i = 0; i < placeCount; ++i) {
            const Lanes place = Lanes{} + static_cast<int16_t>(placeCount - i);
            for (size_t v = 0; v < kVectors; ++v) {
                Lanes originals;
                std::memcpy(&originals, places[i] + x + v * kLanes, sizeof originals);
                const Lanes here = (originals == results[v]) & place;
                found[v] = found[v] > here ? found[v] : here;
            }
        }
        std::memcpy(nearest + x, found, sizeof found);
    }
}

using NearestFiller = void (*)(const uint16_t *, size_t, const uint16_t *const *, size_t, int16_t *);

void FillNearestAnywhere(const uint16_t *hashes, size_t count, const uint16_t *const *places,
                         size_t placeCount, int16_t *nearest) {
    FillNearest(hashes, count, places, placeCount, nearest);
}

#ifdef __x86_64__
__attribute__((target("avx2"))) void FillNearestWide(const uint16_t *hashes, size_t count,
                                                     const uint16_t *const *places, size_t placeCount,
                                                     int16_t *nearest) {
    FillNearest(hashes, count, places, placeCount, nearest);
}

NearestFiller ChooseFiller() {
    return __builtin_cpu_supports("avx2") != 0 ? FillNearestWide : FillNearestAnywhere;
}
#else
NearestFiller ChooseFiller() {
    return FillNearestAnywhere;
}
#endif

template <typename Sample, size_t Planes>
void FindNearest(const std::vector<PlaceRow<Planes>> &places, Restorer<Sample, Planes> *restorer) {
    static const NearestFiller fill = ChooseFiller();
    std::vector<const uint16_t *> hashes;
    hashes.reserve(places.size());
    for (const PlaceRow<Planes> &place : places) {
        hashes.push_back(place.hashes);
    }
    fill(restorer->results.hashes.data(), restorer->results.colors.size(), hashes.data(), hashes.size(),
         restorer->nearest.data());
}

// Faster than the array's own comparison, which calls memcmp.
template <size_t Planes>
bool IsEqual(const std::array<uint16_t, Planes> &a, const std::array<uint16_t, Planes> &b) {
    int difference = 0;
    for (size_t plane = 0; plane < Planes; ++plane) {
        difference |= a[plane] ^ b[plane];
    }
    return difference == 0;
}

// What a row's results are restored from.
template <size_t Planes>
struct RowWork {
    const Document *document;
    VRect core, shown;
    std::vector<PlaceRow<Planes>> places;
    bool setApart;  // whether there are such originals
    const std::array<uint16_t, Planes> *results;
};

template <size_t Planes>
const uint8_t *OriginalAt(const RowWork<Planes> &work, const PlaceRow<Planes> &place, int32_t x) {
    const int32_t column = std::clamp(work.core.left + x + place.dx, work.shown.left, work.shown.right - 1);
    return place.row + int64_t{column} * work.document->planes * SampleBytes(*work.document);
}

// Goes through all places, since a hash alone was equal, or originals may be set apart. Null if the result
// stays.
template <size_t Planes>
const PlaceRow<Planes> *Search(const RowWork<Planes> &work, int32_t x) {
    const auto &places = work.places;
    if (work.setApart && IsSetApart(*work.document, OriginalAt(work, places.front(), x))) {
        return &places.front();
    }
    for (const PlaceRow<Planes> &place : places) {
        if (IsEqual(place.colors[x], work.results[x]) &&
            !(work.setApart && IsSetApart(*work.document, OriginalAt(work, place, x)))) {
            return &place;
        }
    }
    // What stood in for a colour that is not finite may come from further away: then nothing is changed.
    const bool stoodIn =
        work.setApart && std::any_of(places.begin(), places.end(), [&](const PlaceRow<Planes> &place) {
            return !HasFiniteColors(*work.document, OriginalAt(work, place, x));
        });
    return stoodIn ? &places.front() : nullptr;
}

template <typename Sample, size_t Planes>
void RestoreRow(int32_t y, const RowWork<Planes> &work, const Restorer<Sample, Planes> &restorer) {
    const Document &document = *work.document;
    const int64_t pixelBytes = document.planes * int64_t{sizeof(Sample)};
    const auto [left, right] = std::pair(work.core.left, work.core.right);
    const auto [first, last] = std::pair(work.shown.left, work.shown.right - 1);
    const bool setApart = work.setApart;
    const PlaceRow<Planes> *end = work.places.data() + work.places.size();
    const int16_t *nearest = restorer.nearest.data();
    const auto *results = work.results;
    uint8_t *to = RowAt(document, document.destination, y) + left * pixelBytes;
    for (int32_t x = 0; x < right - left; ++x, to += pixelBytes) {
        if (nearest[x] == 0 && !setApart) {
            continue;
        }
        const PlaceRow<Planes> *place = end - nearest[x];
        if (setApart || !IsEqual(place->colors[x], results[x])) {
            place = Search(work, x);
        }
        if (place != nullptr) {
            const int64_t column = std::clamp(left + x + place->dx, first, last);
            std::memcpy(to, place->row + column * pixelBytes, Planes * sizeof(Sample));
        }
    }
}

// Brings back what is set apart, where colours lose nothing.
void RestoreSetApart(const VRect &core, Document *document) {
    const int64_t pixelBytes = int64_t{document->planes} * SampleBytes(*document);
    for (int32_t y = core.top; y < core.bottom; ++y) {
        const uint8_t *from = RowAt(*document, document->source, y);
        uint8_t *to = RowAt(*document, document->destination, y);
        for (int64_t place = core.left * pixelBytes; place < core.right * pixelBytes; place += pixelBytes) {
            if (IsSetApart(*document, from + place)) {
                std::copy_n(from + place, document->colorPlanes * SampleBytes(*document), to + place);
            }
        }
    }
}

template <typename Sample, size_t Planes>
bool Restore(const FilteredPart &part, const std::function<bool()> &cancelled, Document *document) {
    auto restorer = MakeRestorer<Sample, Planes>(part, document);
    const auto &[core, shown, radius] = part;
    for (int32_t y = core.top; y < core.bottom; ++y) {
        if (cancelled()) {
            return false;
        }
        for (; restorer.nextRow < std::min(y + radius + 1, shown.bottom); ++restorer.nextRow) {
            AddOriginals(restorer.nextRow, &restorer);
        }
        FillColors(document->destination, y, core.left, core.right, nullptr, 0, &restorer, &restorer.results);
        FillHashes(&restorer.results);
        RowWork<Planes> work = {
            document, core, shown, PlaceRowsAround(y, restorer), false, restorer.results.colors.data()};
        work.setApart = std::any_of(work.places.begin(), work.places.end(),
                                    [](const PlaceRow<Planes> &place) { return place.setApart; });
        FindNearest(work.places, &restorer);
        RestoreRow(y, work, restorer);
    }
    return true;
}

template <typename Sample>
constexpr auto kRestoreByPlanes = std::array{Restore<Sample, 1>, Restore<Sample, 3>, Restore<Sample, 4>};

}  // namespace

bool RestoreOriginals(const FilteredPart &part, const std::function<bool()> &cancelled, Document *document) {
    if (!LosesBits(*document)) {
        if (document->transparency != 0) {
            RestoreSetApart(part.core, document);
        }
        return true;
    }
    const auto &restore = document->depth == 8    ? kRestoreByPlanes<uint8_t>
                          : document->depth == 16 ? kRestoreByPlanes<uint16_t>
                                                  : kRestoreByPlanes<float>;
    // 1, 3 or 4 planes.
    return restore[static_cast<size_t>(document->colorPlanes) / 2](part, cancelled, document);
}
