#include "host/interrupt.h"

#include <atomic>
#include <csignal>

namespace {

std::atomic<bool> interrupted = false;
static_assert(std::atomic<bool>::is_always_lock_free);

void Remember(int) {
    interrupted = true;
}

}  // namespace

void WatchForInterrupts() {
    struct sigaction action = {};
    action.sa_handler = Remember;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction before = {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler != SIG_IGN) {
            sigaction(signal, &action, nullptr);
        }
    }
}

bool Interrupted() {
    return interrupted;
}
