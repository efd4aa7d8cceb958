#include <cstdlib>
#include <cstring>

#include "hybrid_kernel.h"
#include "hybrid_variants.h"

namespace {

constexpr int kKernels = 4;

struct KernelList {
    const HybridKernel *at[kKernels + 1] = {};
    int count = 0;

    KernelList() {
        Add(kHybridScalar);
#ifdef __x86_64__
        Add(kHybridSse2);
        if (__builtin_cpu_supports("avx2")) {
            Add(kHybridAvx2);
        }
        if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
            __builtin_cpu_supports("avx512dq") && __builtin_cpu_supports("avx512vl")) {
            Add(kHybridAvx512);
        }
#elif defined(__aarch64__)
        Add(kHybridNeon);
#endif
    }

    void Add(const HybridKernel &kernel) {
        at[count++] = &kernel;
    }
};

const KernelList &Usable() {
    static const KernelList list;
    return list;
}

}  // namespace

const HybridKernel *const *UsableHybridKernels() {
    return Usable().at;
}

const HybridKernel *FindHybridKernel(const char *name) {
    for (const HybridKernel *const *kernel = Usable().at; *kernel; ++kernel) {
        if (std::strcmp((*kernel)->name, name) == 0) {
            return *kernel;
        }
    }
    return nullptr;
}

const HybridKernel *SelectHybridKernel() {
    const char *name = std::getenv("HYMEDIAN_KERNEL");
    const HybridKernel *named = name ? FindHybridKernel(name) : nullptr;
    return named ? named : Usable().at[Usable().count - 1];
}
