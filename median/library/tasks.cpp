#include "tasks.h"

#include <atomic>
#include <system_error>
#include <thread>
#include <vector>

namespace {

struct Tasks {
    int64_t count;
    std::atomic<int64_t> next = 0;
    std::atomic<int64_t> done = 0;
    std::atomic<bool> cancelled = false;
};

// False when there is none left.
template <typename Work>
bool DoNext(Tasks *tasks, Work work) {
    if (tasks->cancelled) {
        return false;
    }
    const int64_t task = tasks->next++;
    if (task >= tasks->count) {
        return false;
    }
    work(task);
    ++tasks->done;
    return true;
}

}  // namespace

bool DoTasks(int64_t count, int workers, const std::function<void(int64_t task, int worker)> &work,
             const std::function<bool(double done)> &goOn) {
    if (!goOn(0)) {
        return false;
    }
    Tasks tasks;
    tasks.count = count;
    std::vector<std::thread> helpers;
    try {
        for (int worker = 1; worker < workers; ++worker) {
            helpers.emplace_back([&tasks, &work, worker] {
                while (DoNext(&tasks, [&](int64_t task) { work(task, worker); })) {
                }
            });
        }
    } catch (const std::exception &) {
        // Those that there are do it all.
    }
    while (DoNext(&tasks, [&](int64_t task) { work(task, 0); })) {
        const int64_t done = tasks.done;
        if (done < count && !goOn(static_cast<double>(done) / static_cast<double>(count))) {
            tasks.cancelled = true;
        }
    }
    for (std::thread &helper : helpers) {
        helper.join();
    }
    return !tasks.cancelled && goOn(1);
}
