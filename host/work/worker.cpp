#include "host/work/worker.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <csignal>
#include <vector>

#include "host/filter/plugin.h"
#include "host/picture/vips_library.h"
#include "host/work/band_filter.h"
#include "host/work/worker_job.h"
#include "host/work/worker_pool.h"
#include "platform/packing.h"

namespace {

// Progress is reported in steps of this size: often enough for a bar to move smoothly.
constexpr double kProgressStep = 1.0 / 128;

// What a worker keeps from job to job.
struct Workplace {
    Plugin plugin;
    MaybeFailure pluginFailure;
    bool pluginOpened = false;
    bool vipsStarted = false;
    // Of the one picture whose bands this worker gets.
    PixelBlock source, destination, mask;
};

void Say(char mark, const std::string &content) {
    const std::string packet = mark + content;
    send(kWorkerLine, packet.data(), packet.size(), MSG_NOSIGNAL);
}

// A worker is never asked to stop; it is killed.
Watcher ReportingWatcher() {
    return {[told = 0.0](double done) mutable {
                if (done >= told + kProgressStep || done < told) {
                    told = done;
                    std::string content;
                    AppendRecord(&content, done);
                    Say(kProgressMark, content);
                }
            },
            [] { return false; }};
}

void NeedPlugin(const std::string &folder, Workplace *workplace) {
    if (!workplace->pluginOpened) {
        workplace->pluginOpened = true;
        workplace->pluginFailure = OpenPlugin(folder, &workplace->plugin);
    }
}

bool MapStore(const BandPlace &place, Workplace *workplace) {
    if (workplace->source == nullptr) {
        workplace->source = MapShared(kFirstShared, place.storeBytes);
        workplace->destination = MapShared(kFirstShared + 1, place.storeBytes);
        if (place.maskBytes > 0) {
            workplace->mask = MapShared(kFirstShared + 2, place.maskBytes);
        }
    }
    return workplace->source != nullptr && workplace->destination != nullptr &&
           (place.maskBytes == 0 || workplace->mask != nullptr);
}

FilterOutcome DoBand(const BandJob &job, Workplace *workplace) {
    if (workplace->pluginFailure) {
        return {errReportString, "the plug-in could not be opened once more", {}};
    }
    if (!MapStore(job.place, workplace)) {
        return {memFullErr, {}, {}};
    }
    BandDocument band = LendBand(job.picture, job.place.rows, job.place.storeRow,
                                 {&workplace->source, &workplace->destination, &workplace->mask});
    return FilterBand(&workplace->plugin.module, job.orders, ReportingWatcher(), &band);
}

FileAnswer DoFile(const FileTask &task, Workplace *workplace) {
    if (workplace->pluginFailure) {
        return {workplace->pluginFailure, {}};
    }
    if (!workplace->vipsStarted) {
        workplace->vipsStarted = StartVips("hymedian");
        // There are workers for the other processors.
        vips_concurrency_set(1);
    }
    FileAnswer answer;
    const FilterPlace here = {&workplace->plugin, {}, 1};
    answer.failure = DoFileTask(task, here, ReportingWatcher(), {}, &answer.report);
    return answer;
}

// Works even if a job of the dead parent is still in the line.
bool ParentIsDead() {
    pollfd line = {kWorkerLine, 0, 0};
    return poll(&line, 1, 0) > 0 && (line.revents & POLLHUP) != 0;
}

}  // namespace

int RunWorker() {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent may have died before that. A job still in the line must not be done: its files would be
    // nobody's.
    if (ParentIsDead()) {
        return 0;
    }
    // Lives until the process ends, since the filter keeps a block behind the module's data word.
    static Workplace workplace;
    std::vector<char> packet(kLargestPacket);
    for (;;) {
        const ssize_t size = recv(kWorkerLine, packet.data(), packet.size(), 0);
        WorkerJob job;
        if (size <= 0 || !UnpackJob({packet.data(), static_cast<size_t>(size)}, &job)) {
            return size == 0 ? 0 : 2;
        }
        NeedPlugin(job.pluginFolder, &workplace);
        Say(kAnswerMark,
            job.band ? PackOutcome(DoBand(*job.band, &workplace)) : PackAnswer(DoFile(job.file, &workplace)));
    }
}
