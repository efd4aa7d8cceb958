#include "host/work/band_queue.h"

#include <chrono>

namespace {

// How long a cancel can go unnoticed. Chosen: users do not feel the delay.
constexpr std::chrono::milliseconds kLook{20};

using Lock = std::unique_lock<std::mutex>;

template <typename Condition>
bool Wait(BandQueue *queue, Condition condition) {
    Lock lock(queue->mutex);
    queue->changed.wait(lock, [&] { return queue->stopped || condition(); });
    return !queue->stopped;
}

template <typename Change>
void Apply(BandQueue *queue, Change change) {
    {
        const Lock lock(queue->mutex);
        change();
    }
    queue->changed.notify_all();
}

}  // namespace

void StopBands(BandQueue *queue, const MaybeFailure &failure) {
    Apply(queue, [&] {
        if (!queue->stopped) {
            queue->stopped = true;
            queue->failure = failure;
        }
    });
}

bool AreStopped(BandQueue *queue) {
    const Lock lock(queue->mutex);
    return queue->stopped;
}

MaybeFailure FailureOf(BandQueue *queue) {
    const Lock lock(queue->mutex);
    return queue->failure;
}

bool WaitForSlot(BandQueue *queue, size_t band) {
    return Wait(queue, [=] { return band < queue->written + queue->slots; });
}

bool WaitUntilFiltered(BandQueue *queue, size_t band) {
    return Wait(queue, [=] { return queue->filtered[band]; });
}

bool WaitUntilRead(BandQueue *queue, size_t band, const Cancelled &cancelled) {
    for (;;) {
        if (const MaybeFailure failure = cancelled()) {
            StopBands(queue, failure);
        }
        Lock lock(queue->mutex);
        if (queue->changed.wait_for(lock, kLook, [=] { return queue->stopped || band < queue->read; })) {
            return !queue->stopped;
        }
    }
}

bool IsRead(BandQueue *queue, size_t band) {
    const Lock lock(queue->mutex);
    return band < queue->read;
}

void MarkRead(BandQueue *queue, size_t band) {
    Apply(queue, [=] { queue->read = band + 1; });
}

void MarkFiltered(BandQueue *queue, size_t band) {
    Apply(queue, [=] { queue->filtered[band] = true; });
}

void MarkWritten(BandQueue *queue, size_t band) {
    Apply(queue, [=] { queue->written = band + 1; });
}

double WrittenPart(BandQueue *queue) {
    const Lock lock(queue->mutex);
    return static_cast<double>(queue->written) / static_cast<double>(queue->filtered.size());
}

void MarkThreadEnded(BandQueue *queue) {
    Apply(queue, [=] { --queue->threads; });
}

bool HaveThreadsEnded(BandQueue *queue) {
    Lock lock(queue->mutex);
    return queue->changed.wait_for(lock, kLook, [=] { return queue->threads == 0; });
}
