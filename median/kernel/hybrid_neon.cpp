#define HYBRID_VARIANT hybrid_neon
#define HYBRID_LANES 4
#define HYBRID_REGISTERS 32
#include "hybrid_impl.h"
#include "hybrid_variants.h"

const HybridKernel kHybridNeon = {"neon", 100000, hybrid_neon::ScratchBytes, hybrid_neon::Filter};
