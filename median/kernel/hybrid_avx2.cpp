#define HYBRID_VARIANT hybrid_avx2
#define HYBRID_LANES 8
#define HYBRID_REGISTERS 16
#include "hybrid_impl.h"
#include "hybrid_variants.h"

const HybridKernel kHybridAvx2 = {"avx2", 200000, hybrid_avx2::ScratchBytes, hybrid_avx2::Filter};
