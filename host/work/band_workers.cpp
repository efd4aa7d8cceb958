#include "host/work/band_workers.h"

#include <algorithm>
#include <numeric>

#include "host/filter/filter_result.h"
#include "host/work/picture_filter.h"
#include "host/work/worker_job.h"
#include "host/work/worker_pool.h"

namespace {

struct Bands {
    const BandRequest *request;
    const std::vector<Tile> *tiles;
    PixelReader reader = {};
    size_t handedOut = 0;
    std::vector<double> done = {};  // indexed by tile
    FilterOutcome outcome = {};
    MaybeFailure failure = {};  // while reading
};

FilterOutcome Trouble(const std::string &message) {
    return {errReportString, message, {}};
}

std::vector<int> SharedBlocks(const Document &document) {
    std::vector<int> shared = {document.source.get_deleter().descriptor,
                               document.destination.get_deleter().descriptor};
    if (document.mask != nullptr) {
        shared.push_back(document.mask.get_deleter().descriptor);
    }
    return shared;
}

void ShowProgress(const Bands &bands) {
    // Tiles are about the same size.
    const double filtered =
        std::accumulate(bands.done.begin(), bands.done.end(), 0.0) / static_cast<double>(bands.done.size());
    const double read = double{1} * bands.reader.rows / bands.reader.picture->document.height;
    bands.request->watcher.progress(kReadingShare * read + (1 - kReadingShare) * filtered);
}

bool ReadUntil(Bands *bands, int32_t row) {
    while (!bands->failure && bands->reader.rows < row) {
        bands->failure = ReadSomeRows(&bands->reader, {[](double) {}, bands->request->watcher.cancelled});
        ShowProgress(*bands);
    }
    return !bands->failure;
}

bool NextBand(Bands *bands, std::string *job) {
    if (bands->handedOut == bands->tiles->size()) {
        return false;
    }
    const Tile &tile = (*bands->tiles)[bands->handedOut++];
    const BandRequest &request = *bands->request;
    *job = PackTileJob(request.pluginFolder, bands->reader.picture->document, request.orders, tile);
    return ReadUntil(bands, tile.framed.bottom);
}

PoolEnd RunBands(Bands *bands) {
    WorkerCalls calls;
    calls.next = [=](std::string *job) { return NextBand(bands, job); };
    calls.meanwhile = [=] {
        return !IsAllRead(bands->reader) && ReadUntil(bands, bands->reader.rows + 1) &&
               !IsAllRead(bands->reader);
    };
    calls.progress = [=](size_t tile, double part) {
        bands->done[tile] = part;
        ShowProgress(*bands);
    };
    calls.answered = [=](size_t tile, const std::string &answer) {
        bands->done[tile] = 1;
        if (!UnpackOutcome(answer, &bands->outcome)) {
            bands->outcome = Trouble(kDamagedAnswer);
        }
        return bands->outcome.result == noErr;
    };
    calls.died = [=](size_t, const std::string &how) {
        bands->outcome = Trouble("a worker process " + how + ", nothing was written");
        return false;
    };
    calls.cancelled = [=] { return bands->failure || bands->request->watcher.cancelled(); };
    const auto workers = std::min(bands->tiles->size(), static_cast<size_t>(bands->request->workers));
    return RunWorkers(static_cast<int32_t>(workers), SharedBlocks(bands->reader.picture->document), calls);
}

}  // namespace

MaybeFailure FilterInWorkers(const BandRequest &request, const std::vector<Tile> &tiles, Picture *picture,
                             Action *recorded) {
    Bands bands = {&request, &tiles, {}};
    bands.done.resize(tiles.size());
    if (MaybeFailure failure = StartReading(picture, &bands.reader)) {
        return failure;
    }
    const PoolEnd end = RunBands(&bands);
    // Rows that are not selected may still be unread.
    if (end == PoolEnd::done) {
        ReadUntil(&bands, picture->document.height);
    }
    if (bands.failure) {
        return bands.failure;
    }
    if (end == PoolEnd::cancelled) {
        return Interruption(picture->file);
    }
    if (end == PoolEnd::notStarted) {
        bands.outcome = Trouble(kNoWorkers);
    }
    *recorded = bands.outcome.recorded;
    return FailureOfFilter(bands.outcome, picture->file);
}
