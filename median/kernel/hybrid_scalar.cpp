#define HYBRID_VARIANT hybrid_scalar
#define HYBRID_LANES 1
#define HYBRID_REGISTERS 16
#include "hybrid_impl.h"
#include "hybrid_variants.h"

const HybridKernel kHybridScalar = {"scalar", 40000, hybrid_scalar::ScratchBytes, hybrid_scalar::Filter};
