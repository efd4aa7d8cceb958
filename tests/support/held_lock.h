// A lock as another process holds it, while signals keep coming to this one.
#pragma once

#include <fcntl.h>
#include <sys/file.h>
#include <sys/time.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <filesystem>

inline bool IsLocked(const std::filesystem::path &path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const bool locked = flock(descriptor, LOCK_EX | LOCK_NB) != 0;
    close(descriptor);
    return locked;
}

// One at a time. It lets go by itself in the end, so that waiting for ever fails a test and does not hang it.
class HeldLock {
  public:
    explicit HeldLock(const std::filesystem::path &path,
                      std::chrono::milliseconds longest = std::chrono::seconds(1)) {
        descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        flock(descriptor, LOCK_EX | LOCK_NB);
        signalsLeft = static_cast<sig_atomic_t>(longest / kInterval);
        struct sigaction action = {};
        action.sa_handler = Count;
        action.sa_flags = SA_RESTART;
        sigaction(SIGALRM, &action, nullptr);
        SetTimer(std::chrono::microseconds(kInterval).count());
    }
    HeldLock(const HeldLock &) = delete;
    HeldLock &operator=(const HeldLock &) = delete;
    ~HeldLock() {
        SetTimer(0);
        std::signal(SIGALRM, SIG_DFL);
        close(descriptor);
    }

  private:
    static constexpr std::chrono::milliseconds kInterval{4};

    static void SetTimer(int64_t microseconds) {
        const itimerval timer = {{0, microseconds}, {0, microseconds}};
        setitimer(ITIMER_REAL, &timer, nullptr);
    }

    static void Count(int) {
        signalsLeft = signalsLeft - 1;
        if (signalsLeft == 0) {
            flock(descriptor, LOCK_UN);
        }
    }

    inline static int descriptor;
    inline static volatile sig_atomic_t signalsLeft;
};
