#include "host/work/picture_stream.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <algorithm>
#include <numeric>
#include <thread>

#include "host/filter/filter_result.h"
#include "host/work/band_filter.h"
#include "host/work/band_queue.h"
#include "host/work/worker_job.h"
#include "host/work/worker_pool.h"

namespace {

// The shares of the progress bar. Chosen: the filter takes longer than writing, and some formats do most of
// their work after the last row.
constexpr double kFilteringShare = 0.6;
constexpr double kRowsShare = 0.35;

struct Stream {
    const StreamRequest *request;
    Picture *picture;
    BandPlan plan;
    Document store = {};
    BandQueue queue = {};
    int news = -1;  // tells the pool of workers that a band has been read, or that the work was stopped

    // Of the thread that hands out bands.
    size_t next = 0;
    std::vector<size_t> bandOfJob = {};
    std::vector<double> done = {};  // by band
    FilterOutcome outcome = {};
};

void Wake(const Stream &stream) {
    const uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(stream.news, &one, sizeof one);
}

void Stop(Stream *stream, const MaybeFailure &failure) {
    StopBands(&stream->queue, failure);
    Wake(*stream);
}

// Rows that a frame shares with the one before it.
MaybeFailure RepeatRows(Stream *stream, size_t band, int32_t from, int32_t to) {
    Document *store = &stream->store;
    const int64_t source = StoreRow(stream->plan, band - 1) - stream->plan.bands[band - 1].frameTop;
    const int64_t target = StoreRow(stream->plan, band) - stream->plan.bands[band].frameTop;
    for (int64_t y = from; y < to; ++y) {
        if (!FillRow(store, target + y, store->source.get() + (source + y) * RowBytes(*store))) {
            return TooLittleMemory(stream->picture->file);
        }
    }
    return std::nullopt;
}

MaybeFailure ReadBand(Stream *stream, size_t band, RowReader *reader) {
    const Band &rows = stream->plan.bands[band];
    if (!stream->plan.whole && band > 0) {
        if (MaybeFailure failure = RepeatRows(stream, band, rows.frameTop, reader->rows)) {
            return failure;
        }
    }
    const int64_t target = StoreRow(stream->plan, band) - rows.frameTop;
    while (reader->rows < rows.frameBottom && !AreStopped(&stream->queue)) {
        const int32_t count = std::min(StripHeight(stream->store), rows.frameBottom - reader->rows);
        if (MaybeFailure failure = ReadRows(reader, count, &stream->store, target + reader->rows)) {
            return failure;
        }
    }
    return std::nullopt;
}

// The reading thread.
void ReadBands(Stream *stream) {
    RowReader reader = StartReading(stream->picture);
    for (size_t band = 0; band < stream->plan.bands.size(); ++band) {
        if (!WaitForSlot(&stream->queue, band)) {
            break;
        }
        if (MaybeFailure failure = ReadBand(stream, band, &reader)) {
            Stop(stream, failure);
            break;
        }
        MarkRead(&stream->queue, band);
        Wake(*stream);
    }
    reader.region.reset();
    vips_thread_shutdown();
    MarkThreadEnded(&stream->queue);
}

// The writing thread.
void WriteBands(Stream *stream) {
    size_t band = 0;
    const auto rowAt = [stream, &band](int32_t row) -> const uint8_t * {
        const BandPlan &plan = stream->plan;
        if (row == plan.bands[band].bottom && band + 1 < plan.bands.size()) {
            MarkWritten(&stream->queue, band++);
        }
        const Band &rows = plan.bands[band];
        if (row < rows.top || row >= rows.bottom || !WaitUntilFiltered(&stream->queue, band)) {
            return nullptr;
        }
        const int64_t place = StoreRow(plan, band) + row - rows.frameTop;
        return stream->store.destination.get() + place * RowBytes(stream->store);
    };
    if (MaybeFailure failure = stream->request->write(rowAt)) {
        Stop(stream, failure);
    }
    vips_thread_shutdown();
    MarkThreadEnded(&stream->queue);
}

void ShowProgress(Stream *stream) {
    const double filtered = std::accumulate(stream->done.begin(), stream->done.end(), 0.0) /
                            static_cast<double>(stream->done.size());
    stream->request->watcher.progress(kFilteringShare * filtered + kRowsShare * WrittenPart(&stream->queue));
}

MaybeFailure Cancel(Stream *stream) {
    ShowProgress(stream);
    return stream->request->watcher.cancelled() ? MaybeFailure(Interruption(stream->picture->file))
                                                : std::nullopt;
}

// Takes the filter's answer to a band; false if it failed.
bool TakeOutcome(Stream *stream, size_t band, FilterOutcome outcome) {
    stream->outcome = std::move(outcome);
    if (const MaybeFailure failure = FailureOfFilter(stream->outcome, stream->picture->file)) {
        Stop(stream, failure);
        return false;
    }
    stream->done[band] = 1;
    MarkFiltered(&stream->queue, band);
    return true;
}

void PassOver(Stream *stream, size_t band) {
    stream->done[band] = 1;
    MarkFiltered(&stream->queue, band);
}

void FilterHere(Stream *stream) {
    const Document &store = stream->store;
    const Document &document = stream->picture->document;
    const Cancelled cancelled = [=] { return Cancel(stream); };
    for (size_t i = 0; i < stream->plan.bands.size(); ++i) {
        const Band &rows = stream->plan.bands[i];
        if (!WaitUntilRead(&stream->queue, i, cancelled)) {
            return;
        }
        if (!rows.selected) {
            PassOver(stream, i);
            continue;
        }
        BandDocument band = LendBand(document, rows, StoreRow(stream->plan, i),
                                     {&store.source, &store.destination, &document.mask});
        const Watcher watcher = {
            [=](double done) {
                stream->done[i] = done;
                ShowProgress(stream);
            },
            [=] { return AreStopped(&stream->queue) || stream->request->watcher.cancelled(); }};
        if (!TakeOutcome(stream, i,
                         FilterBand(&stream->request->place.plugin->module, stream->request->orders, watcher,
                                    &band))) {
            return;
        }
    }
}

NextJob NextBand(Stream *stream, std::string *job) {
    const BandPlan &plan = stream->plan;
    for (; stream->next < plan.bands.size() && IsRead(&stream->queue, stream->next); ++stream->next) {
        const Band &rows = plan.bands[stream->next];
        if (rows.selected) {
            const Document &picture = stream->picture->document;
            const BandPlace place = {PixelBytes(stream->store), StoreRow(plan, stream->next),
                                     picture.mask == nullptr ? 0 : MaskBytes(picture), rows};
            *job = PackBandJob(stream->request->place.pluginFolder, picture, place, stream->request->orders);
            stream->bandOfJob.push_back(stream->next++);
            return NextJob::made;
        }
        PassOver(stream, stream->next);
    }
    return stream->next == plan.bands.size() ? NextJob::none : NextJob::notYet;
}

void FilterInWorkers(Stream *stream) {
    const std::string &file = stream->picture->file;
    WorkerCalls calls;
    calls.news = stream->news;
    calls.next = [=](std::string *job) { return NextBand(stream, job); };
    calls.progress = [=](size_t job, double part) { stream->done[stream->bandOfJob[job]] = part; };
    calls.answered = [=](size_t job, const std::string &answer) {
        FilterOutcome outcome;
        if (!UnpackOutcome(answer, &outcome)) {
            Stop(stream, FileFailure(file, kDamagedAnswer));
            return false;
        }
        return TakeOutcome(stream, stream->bandOfJob[job], std::move(outcome));
    };
    calls.died = [=](size_t, const std::string &how) {
        Stop(stream, FileFailure(file, "a worker process " + how + ", nothing was written"));
        return false;
    };
    calls.cancelled = [=] {
        if (const MaybeFailure failure = Cancel(stream)) {
            Stop(stream, failure);
        }
        return AreStopped(&stream->queue);
    };
    std::vector<int> shared = {stream->store.source.get_deleter().descriptor,
                               stream->store.destination.get_deleter().descriptor};
    if (const PixelBlock &mask = stream->picture->document.mask; mask != nullptr) {
        shared.push_back(mask.get_deleter().descriptor);
    }
    const auto workers =
        std::min(stream->plan.bands.size(), static_cast<size_t>(stream->request->place.jobs));
    if (RunWorkers(static_cast<int32_t>(workers), shared, calls) == PoolEnd::notStarted) {
        Stop(stream, FileFailure(file, kNoWorkers));
    }
}

// Waits until all has been written, or for the threads of a work that was stopped.
void AwaitThreads(Stream *stream) {
    while (!HaveThreadsEnded(&stream->queue)) {
        if (const MaybeFailure failure = Cancel(stream)) {
            Stop(stream, failure);
            if (!HaveThreadsEnded(&stream->queue)) {
                stream->request->leave(*failure);
            }
        }
    }
}

MaybeFailure MakeStore(Stream *stream, Sharing sharing) {
    DocumentShape *shape = &stream->store;
    *shape = stream->picture->document;
    shape->height = stream->plan.storeRows;
    if (!MapPixels(sharing, &stream->store)) {
        return TooLittleMemory(stream->picture->file);
    }
    stream->queue.slots = stream->plan.slots;
    stream->queue.filtered.resize(stream->plan.bands.size());
    stream->done.resize(stream->plan.bands.size());
    return std::nullopt;
}

bool FitsIntoDialog(const Document &document) {
    const VRect area = SelectedRect(document);
    return std::max(WidthOf(area), HeightOf(area)) <= kMaxRunSide;
}

}  // namespace

MaybeFailure StreamPicture(const StreamRequest &request, Picture *picture, Action *recorded) {
    const Document &document = picture->document;
    if (request.orders.user == DialogUser::person && !FitsIntoDialog(document)) {
        return FileFailure(picture->file, "the picture is too large to be shown in the dialog whole");
    }
    const bool inWorkers = IsWorthWorkers(document, request.place.jobs);
    Stream stream = {&request, picture, PlanBands(document, request.place.jobs, request.store)};
    if (MaybeFailure failure = MakeStore(&stream, inWorkers ? Sharing::withWorkers : Sharing::none)) {
        return failure;
    }
    stream.news = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    stream.queue.threads = 2;
    std::thread reading(ReadBands, &stream);
    std::thread writing(WriteBands, &stream);
    (inWorkers ? FilterInWorkers : FilterHere)(&stream);
    AwaitThreads(&stream);
    reading.join();
    writing.join();
    close(stream.news);
    if (request.store == Store::whole) {
        picture->document.source = std::move(stream.store.source);
        picture->document.destination = std::move(stream.store.destination);
    }
    *recorded = stream.outcome.recorded;
    return FailureOf(&stream.queue);
}
