// Worker processes of this program, which do jobs sent as messages. A process can only run one filter at a
// time, so this is how several run at once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// A worker is this program, started with this as its only argument.
constexpr char kWorkerArgument[] = "--worker";

// The descriptors that a worker starts with: its end of the line to the parent, then the shared blocks.
constexpr int kWorkerLine = 3;
constexpr int kFirstShared = 4;

// Packets on the line. To the worker: jobs. From the worker: these marks, each followed by a double or by the
// answer to the job.
constexpr char kProgressMark = 'p';
constexpr char kAnswerMark = 'a';
// In bytes: room for the nine names of a job, each of up to 4 KiB, three times over.
constexpr size_t kLargestPacket = 1 << 17;

enum class NextJob {
    made,
    notYet,  // it depends on other work
    none,    // there are no more
};

struct WorkerCalls {
    // Makes the message for the next job; jobs are numbered from 0.
    std::function<NextJob(std::string *job)> next;
    int news = -1;  // an event descriptor that tells when to ask for a job again that was not there yet
    std::function<void(size_t job, double done)> progress;
    // Both end a job; returning false ends all the others.
    std::function<bool(size_t job, const std::string &answer)> answered;
    std::function<bool(size_t job, const std::string &how)> died;  // while it waited: the next job's number
    std::function<bool()> cancelled;                               // asked at least every 20 ms
};

// What users are told when no worker can be started, and when a worker's answer makes no sense.
constexpr char kNoWorkers[] = "no worker process can be started; --jobs 1 does without";
constexpr char kDamagedAnswer[] = "a worker process sent a damaged answer, nothing was written";

enum class PoolEnd {
    done,
    stopped,  // by one of the calls
    cancelled,
    notStarted,  // not even one worker could be started
};

// Does all jobs in up to `workers` processes, which inherit the descriptors in `shared`. None of the
// processes is left afterwards.
PoolEnd RunWorkers(int32_t workers, const std::vector<int> &shared, const WorkerCalls &calls);
