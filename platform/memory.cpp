// Owns every block: each carries its size in a header just before the bytes handed out.
#include "platform/memory.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <cstring>

#include "platform/faults/fault_injection.h"
#include "platform/faults/fault_queries.h"
#include "platform/internal/large_pages.h"

namespace {

struct alignas(std::max_align_t) Header {
    int64_t size;
};

// A handle points at `block`, the first member.
struct Master {
    Ptr block;
};

std::atomic<int64_t> bytesInUse = 0;
std::atomic<int64_t> blocksInUse = 0;

Header *HeaderOf(Ptr block) {
    return reinterpret_cast<Header *>(block) - 1;
}

Ptr Allocate(int64_t size, bool clear) {
    if (size < 0 || faults::AllocationFails(size, bytesInUse)) {
        return nullptr;
    }
    const size_t total = sizeof(Header) + static_cast<size_t>(size);
    void *memory = clear ? std::calloc(1, total) : std::malloc(total);
    if (memory == nullptr) {
        return nullptr;
    }
    TakeLargePages(memory, total);
    auto *header = static_cast<Header *>(memory);
    header->size = size;
    bytesInUse += size;
    ++blocksInUse;
    return reinterpret_cast<Ptr>(header + 1);
}

void Release(Ptr block) {
    if (block == nullptr) {
        return;
    }
    bytesInUse -= HeaderOf(block)->size;
    --blocksInUse;
    std::free(HeaderOf(block));
}

Handle MakeHandle(int64_t size, bool clear) {
    Ptr block = Allocate(size, clear);
    if (block == nullptr) {
        return nullptr;
    }
    auto *master = static_cast<Master *>(std::malloc(sizeof(Master)));
    if (master == nullptr) {
        Release(block);
        return nullptr;
    }
    master->block = block;
    return &master->block;
}

}  // namespace

Ptr NewPtr(int64_t size) {
    return Allocate(size, false);
}

Ptr NewPtrClear(int64_t size) {
    return Allocate(size, true);
}

void DisposePtr(Ptr block) {
    Release(block);
}

int64_t GetPtrSize(Ptr block) {
    return block == nullptr ? 0 : HeaderOf(block)->size;
}

Handle NewHandle(int64_t size) {
    return MakeHandle(size, false);
}

Handle NewHandleClear(int64_t size) {
    return MakeHandle(size, true);
}

void DisposeHandle(Handle handle) {
    if (handle != nullptr) {
        Release(*handle);
        std::free(handle);
    }
}

int64_t GetHandleSize(Handle handle) {
    return handle == nullptr ? 0 : GetPtrSize(*handle);
}

OSErr SetHandleSize(Handle handle, int64_t size) {
    if (handle == nullptr) {
        return paramErr;
    }
    Ptr grown = Allocate(size, true);
    if (grown == nullptr) {
        return memFullErr;
    }
    BlockMoveData(*handle, grown, std::min(size, GetPtrSize(*handle)));
    Release(*handle);
    *handle = grown;
    return noErr;
}

void HLock(Handle) {}

void HUnlock(Handle) {}

Handle TempNewHandle(int64_t size, OSErr *result) {
    Handle handle = faults::TemporaryMemoryRefused() ? nullptr : NewHandleClear(size);
    *result = handle == nullptr ? memFullErr : noErr;
    return handle;
}

void BlockMoveData(const void *source, void *destination, int64_t count) {
    if (count > 0) {
        std::memmove(destination, source, static_cast<size_t>(count));
    }
}

#ifdef HYMEDIAN_FAULT_INJECTION

int64_t faults::BytesInUse() {
    return bytesInUse;
}

int64_t faults::BlocksInUse() {
    return blocksInUse;
}

#endif
