#include "host/work/worker_pool.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <list>
#include <optional>
#include <utility>

namespace {

// How long a signal that arrives between two calls can go unnoticed. Chosen: users do not feel the delay.
constexpr int kPollMilliseconds = 20;
// Descriptors are first moved to this number or above, since one of them could be where another has to go.
constexpr int kOutOfTheWay = 64;

// Closes its descriptors and ends its process.
struct Worker {
    pid_t process = -1;
    int line = -1;
    std::optional<size_t> job;

    Worker() = default;
    Worker(const Worker &) = delete;
    Worker &operator=(const Worker &) = delete;
    ~Worker() { End(); }

    bool IsDead() const { return line < 0; }

    // Returns the status from waitpid, or 0 if the process had already ended.
    int End() {
        int status = 0;
        // Killed before the line is closed, which would make it exit by itself.
        if (process > 0) {
            kill(process, SIGKILL);
            waitpid(process, &status, 0);
            process = -1;
        }
        if (line >= 0) {
            close(line);
            line = -1;
        }
        return status;
    }
};

// Ctrl-C and its relatives go to the whole process group, and the parent answers them. Workers are born with
// them blocked: by the time that they could ignore them it may be too late.
bool BlockInterrupts(posix_spawnattr_t *attributes) {
    sigset_t interrupts;
    sigemptyset(&interrupts);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        sigaddset(&interrupts, signal);
    }
    return posix_spawnattr_setflags(attributes, POSIX_SPAWN_SETSIGMASK) == 0 &&
           posix_spawnattr_setsigmask(attributes, &interrupts) == 0;
}

bool Spawn(const std::vector<int> &descriptors, pid_t *process) {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    std::vector<int> moved;
    bool sound = BlockInterrupts(&attributes);
    for (size_t i = 0; i < descriptors.size(); ++i) {
        moved.push_back(fcntl(descriptors[i], F_DUPFD_CLOEXEC, kOutOfTheWay));
        sound =
            sound && moved.back() >= 0 &&
            posix_spawn_file_actions_adddup2(&actions, moved.back(), kWorkerLine + static_cast<int>(i)) == 0;
    }
    char program[] = "hymedian";
    std::string argument = kWorkerArgument;
    char *arguments[] = {program, argument.data(), nullptr};
    sound = sound && posix_spawn(process, "/proc/self/exe", &actions, &attributes, arguments, environ) == 0;
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    for (const int descriptor : moved) {
        close(descriptor);
    }
    return sound;
}

bool StartWorker(const std::vector<int> &shared, Worker *worker) {
    int ends[2];
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends) != 0) {
        return false;
    }
    worker->line = ends[0];
    std::vector<int> descriptors = {ends[1]};
    descriptors.insert(descriptors.end(), shared.begin(), shared.end());
    const bool started = Spawn(descriptors, &worker->process);
    close(ends[1]);
    return started;
}

std::string HowItEnded(int status) {
    return WIFSIGNALED(status) ? "was ended by signal " + std::to_string(WTERMSIG(status)) + " (" +
                                     strsignal(WTERMSIG(status)) + ")"
                               : "ended with status " + std::to_string(WEXITSTATUS(status));
}

struct Pool {
    const std::vector<int> *shared;
    const WorkerCalls *calls;
    size_t wanted;
    std::list<Worker> workers = {};
    size_t jobs = 0;       // handed out so far
    bool drained = false;  // there are no more jobs
};

// Gives the worker the next job, if there is one. If the worker is dead, that shows when its line is read.
void HandOut(Pool *pool, Worker *worker) {
    std::string job;
    worker->job.reset();
    const NextJob next = pool->drained ? NextJob::none : pool->calls->next(&job);
    pool->drained = next == NextJob::none;
    if (next == NextJob::made) {
        worker->job = pool->jobs++;
        send(worker->line, job.data(), job.size(), MSG_NOSIGNAL);
    }
}

bool FillUp(Pool *pool) {
    for (Worker &worker : pool->workers) {
        if (!worker.job && !worker.IsDead()) {
            HandOut(pool, &worker);
        }
    }
    while (!pool->drained && pool->workers.size() < pool->wanted) {
        Worker &worker = pool->workers.emplace_back();
        if (!StartWorker(*pool->shared, &worker)) {
            pool->workers.pop_back();
            return !pool->workers.empty();
        }
        HandOut(pool, &worker);
    }
    return true;
}

// Takes one packet from the worker; false when all workers are to end.
bool Listen(Pool *pool, Worker *worker) {
    static std::vector<char> packet(kLargestPacket);
    const ssize_t size = recv(worker->line, packet.data(), packet.size(), 0);
    if (size <= 0) {
        const std::optional<size_t> job = std::exchange(worker->job, std::nullopt);
        const std::string how = HowItEnded(worker->End());
        // A worker that dies while it waits would die again if it were started once more.
        return pool->calls->died(job.value_or(pool->jobs), how);
    }
    const size_t job = *worker->job;
    const std::string content(packet.data() + 1, static_cast<size_t>(size) - 1);
    if (packet[0] == kAnswerMark) {
        if (!pool->calls->answered(job, content)) {
            return false;
        }
        HandOut(pool, worker);
        return true;
    }
    double done = 0;
    std::memcpy(&done, content.data(), std::min(content.size(), sizeof done));
    pool->calls->progress(job, done);
    return true;
}

bool ListenToAll(Pool *pool) {
    std::vector<pollfd> lines;
    for (const Worker &worker : pool->workers) {
        lines.push_back({worker.line, POLLIN, 0});
    }
    lines.push_back({pool->calls->news, POLLIN, 0});
    if (poll(lines.data(), lines.size(), kPollMilliseconds) <= 0) {
        return true;
    }
    if (lines.back().revents != 0) {
        uint64_t count = 0;
        [[maybe_unused]] const ssize_t taken = read(pool->calls->news, &count, sizeof count);
    }
    auto line = lines.begin();
    for (Worker &worker : pool->workers) {
        if ((line++)->revents != 0 && !Listen(pool, &worker)) {
            return false;
        }
    }
    return true;
}

}  // namespace

PoolEnd RunWorkers(int32_t workers, const std::vector<int> &shared, const WorkerCalls &calls) {
    Pool pool = {&shared, &calls, static_cast<size_t>(workers)};
    for (;;) {
        if (!FillUp(&pool)) {
            return PoolEnd::notStarted;
        }
        pool.workers.remove_if(
            [&](const Worker &worker) { return worker.IsDead() || (pool.drained && !worker.job); });
        if (pool.workers.empty()) {
            if (pool.drained) {
                return PoolEnd::done;
            }
            continue;
        }
        if (calls.cancelled()) {
            return PoolEnd::cancelled;
        }
        if (!ListenToAll(&pool)) {
            return PoolEnd::stopped;
        }
    }
}
