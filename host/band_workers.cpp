#include "host/band_workers.h"

#include <algorithm>
#include <numeric>

#include "host/worker_job.h"
#include "host/worker_pool.h"

namespace {

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

}  // namespace

FilterOutcome FilterInWorkers(const BandRequest &request, const std::vector<Tile> &tiles) {
    ResetDestination(request.document);
    FilterOutcome outcome = {};
    std::vector<double> done(tiles.size());
    size_t handedOut = 0;
    WorkerCalls calls;
    calls.next = [&](std::string *job) {
        if (handedOut == tiles.size()) {
            return false;
        }
        *job = PackTileJob(request.pluginFolder, *request.document, request.action, request.dialog,
                           tiles[handedOut++]);
        return true;
    };
    // Tiles are of about one size.
    calls.progress = [&](size_t tile, double part) {
        done[tile] = part;
        request.watcher.progress(std::accumulate(done.begin(), done.end(), 0.0) /
                                 static_cast<double>(tiles.size()));
    };
    calls.answered = [&](size_t tile, const std::string &answer) {
        done[tile] = 1;
        if (!UnpackOutcome(answer, &outcome)) {
            outcome = Trouble("a worker process answered nonsense");
        }
        return outcome.result == noErr;
    };
    calls.died = [&](size_t, const std::string &how) {
        outcome = Trouble("a worker process " + how + ", nothing was written");
        return false;
    };
    calls.cancelled = request.watcher.cancelled;
    const auto workers =
        static_cast<int32_t>(std::min<size_t>(tiles.size(), static_cast<size_t>(request.workers)));
    switch (RunWorkers(workers, SharedBlocks(*request.document), calls)) {
        case PoolEnd::cancelled:
            return {userCanceledErr, {}, {}};
        case PoolEnd::notStarted:
            return Trouble("no worker process can be started");
        case PoolEnd::done:
        case PoolEnd::stopped:
            break;
    }
    return outcome;
}
