#include "host/work/band_plan.h"

#include <algorithm>

#include "host/filter/tiles.h"

namespace {

// A band of this size takes about 5 ms at radius 4 and 10 ms at radius 6; a worker takes about 25 ms to
// start, so smaller bands would not be worth one.
constexpr int64_t kMinBandPixels = 1 << 17;
// Margins then add at most a quarter to a band's rows.
constexpr int32_t kMinBandRows = 8 * kFrameMargin;
// More than one, so that no worker waits long for the last band.
constexpr int64_t kBandsPerWorker = 3;
// The size of a band in a long picture. Chosen: margins then add little even to rows of 100 KB, and all slots
// of a few workers fit into memory.
constexpr int64_t kBandBytes = 12'000'000;
// Of rows so long that even a few of them take as much; a slot then holds 28.
constexpr int32_t kFewestRows = 16;

int64_t BandsOfWorkers(const DocumentShape &picture, int32_t jobs) {
    if (jobs == 1) {
        return 1;
    }
    const VRect area = SelectedRect(picture);
    const int64_t pixels = int64_t{WidthOf(area)} * HeightOf(area);
    const int64_t worthwhile = std::min<int64_t>(pixels / kMinBandPixels, HeightOf(area) / kMinBandRows);
    return std::clamp<int64_t>(worthwhile, 1, jobs * kBandsPerWorker);
}

int64_t BandCount(const DocumentShape &picture, int32_t jobs, Store store) {
    if (store == Store::whole) {
        return BandsOfWorkers(picture, jobs);
    }
    const int64_t rows = std::max<int64_t>(kBandBytes / RowBytes(picture), kFewestRows);
    return std::max((picture.height + rows - 1) / rows, BandsOfWorkers(picture, jobs));
}

// One worker's band is filtered while the next one is read. Several workers each have one more waiting, and
// two are left for reading and writing.
size_t SlotCount(int32_t jobs) {
    return jobs == 1 ? 2 : 2 * static_cast<size_t>(jobs) + 2;
}

}  // namespace

BandPlan PlanBands(const DocumentShape &picture, int32_t jobs, Store store) {
    BandPlan plan;
    const VRect area = SelectedRect(picture);
    const int64_t count = BandCount(picture, jobs, store);
    int32_t frameRows = 0;
    for (int64_t i = 0; i < count; ++i) {
        const auto top = static_cast<int32_t>(picture.height * i / count);
        const auto bottom = static_cast<int32_t>(picture.height * (i + 1) / count);
        plan.bands.push_back({top, bottom, std::max(top - kFrameMargin, 0),
                              std::min(bottom + kFrameMargin, picture.height),
                              top < area.bottom && area.top < bottom});
        frameRows = std::max(frameRows, plan.bands.back().frameBottom - plan.bands.back().frameTop);
    }
    plan.whole = store == Store::whole || plan.bands.size() <= SlotCount(jobs);
    plan.slots = plan.whole ? plan.bands.size() : SlotCount(jobs);
    plan.storeRows = plan.whole ? picture.height : static_cast<int32_t>(plan.slots) * frameRows;
    return plan;
}

int32_t StoreRow(const BandPlan &plan, size_t band) {
    return plan.whole ? plan.bands[band].frameTop
                      : static_cast<int32_t>(band % plan.slots) *
                            (plan.storeRows / static_cast<int32_t>(plan.slots));
}

bool IsWorthWorkers(const DocumentShape &picture, int32_t jobs) {
    return BandsOfWorkers(picture, jobs) > 1;
}
