// The kernels, each compiled for its own instruction set.
#pragma once

#include "hybrid_kernel.h"

extern const HybridKernel kHybridScalar;
extern const HybridKernel kHybridSse2;
extern const HybridKernel kHybridAvx2;
extern const HybridKernel kHybridAvx512;
extern const HybridKernel kHybridNeon;
