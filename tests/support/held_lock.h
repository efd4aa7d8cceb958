// Holds a lock from another process, while signals keep coming to this one.
#pragma once

#include <chrono>
#include <filesystem>

bool IsLocked(const std::filesystem::path &path);

// One at a time. It eventually lets go by itself, so that waiting for ever fails a test instead of hanging
// it.
class HeldLock {
  public:
    explicit HeldLock(const std::filesystem::path &path,
                      std::chrono::milliseconds longest = std::chrono::seconds(1));
    HeldLock(const HeldLock &) = delete;
    HeldLock &operator=(const HeldLock &) = delete;
    ~HeldLock();
};
