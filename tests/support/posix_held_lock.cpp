#include "tests/support/held_lock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/time.h>
#include <unistd.h>

#include <csignal>

namespace {

constexpr std::chrono::milliseconds kInterval(4);

int heldDescriptor;
volatile sig_atomic_t signalsLeft;

void SetTimer(int64_t microseconds) {
    const itimerval timer = {{0, microseconds}, {0, microseconds}};
    setitimer(ITIMER_REAL, &timer, nullptr);
}

void Count(int) {
    signalsLeft = signalsLeft - 1;
    if (signalsLeft == 0) {
        flock(heldDescriptor, LOCK_UN);
    }
}

}  // namespace

bool IsLocked(const std::filesystem::path &path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool locked = flock(descriptor, LOCK_EX | LOCK_NB) != 0;
    close(descriptor);
    return locked;
}

HeldLock::HeldLock(const std::filesystem::path &path, std::chrono::milliseconds longest) {
    heldDescriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    flock(heldDescriptor, LOCK_EX | LOCK_NB);
    signalsLeft = static_cast<sig_atomic_t>(longest / kInterval);
    struct sigaction action = {};
    action.sa_handler = Count;
    action.sa_flags = SA_RESTART;
    sigaction(SIGALRM, &action, nullptr);
    SetTimer(std::chrono::microseconds(kInterval).count());
}

HeldLock::~HeldLock() {
    SetTimer(0);
    std::signal(SIGALRM, SIG_DFL);
    close(heldDescriptor);
}
