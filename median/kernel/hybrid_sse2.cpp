#define HYBRID_VARIANT hybrid_sse2
#define HYBRID_LANES 4
#define HYBRID_REGISTERS 16
#include "hybrid_impl.h"
#include "hybrid_variants.h"

const HybridKernel kHybridSse2 = {"sse2", 100000, hybrid_sse2::ScratchBytes, hybrid_sse2::Filter};
