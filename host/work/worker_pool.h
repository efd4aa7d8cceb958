// Worker processes of this program, which do jobs that are put into messages. The filter runs once at a time
// in a process, so this is how several run at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// A worker is this program, started with this as its only argument.
constexpr char kWorkerArgument[] = "--worker";

// Descriptors that a worker is born with: its end of the line to the parent, then what is shared with it.
constexpr int kWorkerLine = 3;
constexpr int kFirstShared = 4;

// Packets on the line. To the worker: jobs. From the worker: these marks, each followed by a double or by the
// answer to the job.
constexpr char kProgressMark = 'p';
constexpr char kAnswerMark = 'a';
constexpr size_t kLargestPacket = 1 << 17;

struct WorkerCalls {
    // The message of the next job, which gets the next number from 0 on; false when there are no more.
    std::function<bool(std::string *job)> next;
    // A piece of the caller's own work between two messages; false when there is no more.
    std::function<bool()> meanwhile = [] { return false; };
    std::function<void(size_t job, double done)> progress;
    // Both end a job; false ends all others.
    std::function<bool(size_t job, const std::string &answer)> answered;
    std::function<bool(size_t job, const std::string &how)> died;
    std::function<bool()> cancelled;
};

// What users are told of a pool that could not be started, and of a worker whose answer makes no sense.
constexpr char kNoWorkers[] = "no worker process can be started; --jobs 1 does without";
constexpr char kDamagedAnswer[] = "a worker process sent a damaged answer, nothing was written";

enum class PoolEnd {
    done,
    stopped,  // by one of the calls
    cancelled,
    notStarted,  // not one worker could be
};

// Does all jobs on up to `workers` processes, which share the descriptors. Afterwards none of them is left.
PoolEnd RunWorkers(int32_t workers, const std::vector<int> &shared, const WorkerCalls &calls);
