#define HYBRID_VARIANT hybrid_avx512
#define HYBRID_LANES 16
#define HYBRID_REGISTERS 32
#include "hybrid_impl.h"
#include "hybrid_variants.h"

const HybridKernel kHybridAvx512 = {"avx512", 250000, hybrid_avx512::ScratchBytes, hybrid_avx512::Filter};
