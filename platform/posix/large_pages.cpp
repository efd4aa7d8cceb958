#include "platform/internal/large_pages.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace {

// 4 MiB always contains a whole 2 MiB page, wherever the block starts.
constexpr size_t kWorthLargePages = size_t{1} << 22;

}  // namespace

void TakeLargePages(void *memory, size_t size) {
    if (size < kWorthLargePages) {
        return;
    }
    const auto page = static_cast<uintptr_t>(sysconf(_SC_PAGESIZE));
    const uintptr_t begin = (reinterpret_cast<uintptr_t>(memory) + page - 1) / page * page;
    const uintptr_t end = (reinterpret_cast<uintptr_t>(memory) + size) / page * page;
    madvise(reinterpret_cast<void *>(begin), end - begin, MADV_HUGEPAGE);
}
