// A pointer block that releases itself.
#pragma once

#include <memory>

#include "platform/memory.h"

struct BlockDisposer {
    void operator()(void *block) const { DisposePtr(static_cast<Ptr>(block)); }
};

template <typename T>
using OwnedBlock = std::unique_ptr<T[], BlockDisposer>;

// `count` zeroed elements; null when memory is short.
template <typename T>
OwnedBlock<T> MakeOwnedBlock(int64_t count) {
    return OwnedBlock<T>(reinterpret_cast<T *>(NewPtrClear(count * int64_t{sizeof(T)})));
}
