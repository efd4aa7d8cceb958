// A lock as another process holds it, while signals keep coming to this one.
#pragma once

#include <chrono>
#include <filesystem>

bool IsLocked(const std::filesystem::path &path);

// One at a time. It lets go by itself in the end, so that waiting for ever fails a test and does not hang it.
class HeldLock {
  public:
    explicit HeldLock(const std::filesystem::path &path,
                      std::chrono::milliseconds longest = std::chrono::seconds(1));
    HeldLock(const HeldLock &) = delete;
    HeldLock &operator=(const HeldLock &) = delete;
    ~HeldLock();
};
