// Tasks shared out among threads.
#pragma once

#include <cstdint>
#include <functional>

// Calls work(task, worker) once for each task from 0 to count - 1: on the calling thread as worker 0, and on
// as many others, up to workers - 1, as the system has. goOn(done), with the part that is done, is called on
// the calling thread before, between and after its tasks; false cancels those that have not begun. Returns
// whether everything is done.
bool DoTasks(int64_t count, int workers, const std::function<void(int64_t task, int worker)> &work,
             const std::function<bool(double done)> &goOn);
