// The order of bands between the threads that read, filter and write a picture: which band is how far, and
// who waits for it. Any of them can stop the others.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <vector>

#include "host/report/failure.h"

struct BandQueue {
    std::mutex mutex = {};
    std::condition_variable changed = {};
    size_t slots = 0;            // bands that can be in memory at once
    size_t read = 0;             // bands read
    std::vector<bool> filtered;  // by band
    size_t written = 0;          // bands whose rows are no longer needed
    int threads = 0;             // at work for the queue
    bool stopped = false;
    MaybeFailure failure = {};  // why; the first one's
};

// Ends the work; those who wait get false. A later failure than the first is a consequence of it.
void StopBands(BandQueue *queue, const MaybeFailure &failure);
bool AreStopped(BandQueue *queue);
MaybeFailure FailureOf(BandQueue *queue);

// These wait, and return false if the work was stopped.
bool WaitForSlot(BandQueue *queue, size_t band);
bool WaitUntilFiltered(BandQueue *queue, size_t band);
// This one also looks every now and then whether the user has cancelled, and stops the work then.
using Cancelled = std::function<MaybeFailure()>;  // no failure while the work is to go on
bool WaitUntilRead(BandQueue *queue, size_t band, const Cancelled &cancelled);

bool IsRead(BandQueue *queue, size_t band);
void MarkRead(BandQueue *queue, size_t band);
void MarkFiltered(BandQueue *queue, size_t band);
void MarkWritten(BandQueue *queue, size_t band);
double WrittenPart(BandQueue *queue);

void MarkThreadEnded(BandQueue *queue);
// Waits for about as long as a cancel may go unnoticed; false if threads are still at work.
bool HaveThreadsEnded(BandQueue *queue);
